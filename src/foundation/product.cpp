#include "foundation/product.h"

const char *Get_BENCH_BRANDING()
{
    return "Tarnbench for ARM";
}
const char *Get_BENCH_NAME()
{
    return "Tarnbench";
}
const char *Get_PRODUCT_GENERIC_NAME()
{
    return "Halden for ARM";
}
const char *Get_RELEASE_MINOR_STRING()
{
    return "7";
}
const char *Get_COPYRIGHT()
{
    return "Copyright (c) 2026 Halden Software. All rights reserved.";
}
const char *Get_OWNER()
{
    return "Halden Software";
}
const char *Get_ASM_FILE_EXTENSION()
{
    return nullptr;
}
const char *Get_SOFTWARE_RELEASE()
{
    return "1.7";
}
const char *Get_RELEASE_MAJOR_STRING()
{
    return "1.";
}
int Get_RELEASE_MAJOR()
{
    return 3;
}
int Get_RELEASE_MAJOR_NUMBER()
{
    return 1;
}
int Get_TARGET_PROCESSOR()
{
    return 8;
}
const char *Get_PLATFORM()
{
    return "ARM";
}
int Get_ADDRESS_WIDTH()
{
    return 8;
}
const char *Get_ADDRESS_FORMAT()
{
    return "%08x";
}
int Get_TARGET_CPP()
{
    return 1;
}
const char *Get_DEFAULT_CODE_SECTION_NAME()
{
    return ".text";
}
const char *Get_DEFAULT_CONST_SECTION_NAME()
{
    return ".rodata";
}
const char *Get_DEFAULT_DATA_SECTION_NAME()
{
    return ".data";
}
const char *Get_DEFAULT_ZEROED_SECTION_NAME()
{
    return ".bss";
}
const char *Get_DEFAULT_VECTORS_SECTION_NAME()
{
    return ".vectors";
}
