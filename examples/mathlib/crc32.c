#include "crc32.h"

uint32_t crc32(const void *data, size_t length)
{
    const unsigned char *byte = data;
    uint32_t crc = 0xffffffffu;
    while (length--) {
        crc ^= *byte++;
        for (int bit = 0; bit < 8; ++bit)
            crc = (crc >> 1) ^ (0xedb88320u & -(crc & 1u));
    }
    return ~crc;
}
