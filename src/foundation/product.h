#pragma once

// The product's constants. Nothing else in the system holds these values.

/// The branding of the installation; also the application name of the settings store.
const char *Get_BENCH_BRANDING();
/// The short name of the installation.
const char *Get_BENCH_NAME();
/// The product name printed in the banner.
const char *Get_PRODUCT_GENERIC_NAME();
/// The minor part of the release, as text.
const char *Get_RELEASE_MINOR_STRING();
/// The copyright line printed under the banner.
const char *Get_COPYRIGHT();
/// The product's owner; also the organisation of the settings store.
const char *Get_OWNER();
/// The fixed assembler file extension; null, as this platform has none.
const char *Get_ASM_FILE_EXTENSION();
/// The release, as text.
const char *Get_SOFTWARE_RELEASE();
/// The major part of the release with its dot, as text.
const char *Get_RELEASE_MAJOR_STRING();
/// The major release code.
int Get_RELEASE_MAJOR();
/// The major release number.
int Get_RELEASE_MAJOR_NUMBER();
/// The code of the target processor family.
int Get_TARGET_PROCESSOR();
/// The platform name.
const char *Get_PLATFORM();
/// The number of hexadecimal digits in a target address.
int Get_ADDRESS_WIDTH();
/// The printf format of a target address.
const char *Get_ADDRESS_FORMAT();
/// Non-zero if the target has a C++ compiler.
int Get_TARGET_CPP();
/// The default name of the code section.
const char *Get_DEFAULT_CODE_SECTION_NAME();
/// The default name of the constant data section.
const char *Get_DEFAULT_CONST_SECTION_NAME();
/// The default name of the initialised data section.
const char *Get_DEFAULT_DATA_SECTION_NAME();
/// The default name of the zeroed data section.
const char *Get_DEFAULT_ZEROED_SECTION_NAME();
/// The default name of the interrupt vectors section.
const char *Get_DEFAULT_VECTORS_SECTION_NAME();
