#include "targets/fuzzentries.h"

extern "C" int LLVMFuzzerTestOneInput(const uint8_t *data, size_t size)
{
    return fuzzXmlParser(data, size);
}
