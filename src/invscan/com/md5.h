#pragma once
// MD5 (RFC 1321): an incremental context and the one-shot hexadecimal digest
// that processor, storage and network identifiers are made from.
#include <cstdint>

struct md5file_context {
    uint32_t a, b, c, d;      // chaining words
    uint32_t lengthBits[2];   // message length in bits: low, high
    unsigned char block[64];  // bytes waiting for a full block
};

extern "C" {
void md5file_clear(md5file_context* ctx);
void md5file_addn(md5file_context* ctx, void const* data, unsigned int length);
void md5file_add(md5file_context* ctx, int byte);
void md5file_hash(md5file_context* ctx, unsigned char digest[16]);
// Finishes and writes 32 lowercase hexadecimal digits and a terminator.
void md5file_sprint_hash(md5file_context* ctx, char* out);
// Null for a null or empty text; otherwise a malloc'ed 36-byte buffer holding
// the lowercase hexadecimal digest. The caller frees it.
char* md5_checksum(char const* text);
}
