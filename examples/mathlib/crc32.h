/* The CRC-32 of IEEE 802.3, as zip and Ethernet compute it. */
#ifndef CRC32_H
#define CRC32_H

#include <stddef.h>
#include <stdint.h>

#ifdef __cplusplus
extern "C" {
#endif

/* The CRC-32 of `length` bytes at `data`. */
uint32_t crc32(const void *data, size_t length);

#ifdef __cplusplus
}
#endif

#endif
