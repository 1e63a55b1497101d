#include "properties/propertyclasslist.h"

void PropertyClassList::appendUnique(PropertyClass *propertyClass)
{
    if (!contains(propertyClass))
        append(propertyClass);
}
