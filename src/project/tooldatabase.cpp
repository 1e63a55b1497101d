#include "project/tooldatabase.h"

ToolDatabase toolDatabase;
