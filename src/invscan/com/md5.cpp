#include "invscan/com/md5.h"

#include <cstdlib>
#include <cstring>

namespace {

inline uint32_t rotl(uint32_t x, int n) { return (x << n) | (x >> (32 - n)); }

inline uint32_t load32(const unsigned char* p)
{
    return static_cast<uint32_t>(p[0]) | static_cast<uint32_t>(p[1]) << 8 |
           static_cast<uint32_t>(p[2]) << 16 | static_cast<uint32_t>(p[3]) << 24;
}

inline void store32(unsigned char* p, uint32_t v)
{
    p[0] = static_cast<unsigned char>(v);
    p[1] = static_cast<unsigned char>(v >> 8);
    p[2] = static_cast<unsigned char>(v >> 16);
    p[3] = static_cast<unsigned char>(v >> 24);
}

#define MD5_STEP(f, a, b, c, d, x, t, s) \
    a += f(b, c, d) + (x) + (t);         \
    a = rotl(a, s) + (b)

#define MD5_F(x, y, z) ((z) ^ ((x) & ((y) ^ (z))))
#define MD5_G(x, y, z) ((y) ^ ((z) & ((x) ^ (y))))
#define MD5_H(x, y, z) ((x) ^ (y) ^ (z))
#define MD5_I(x, y, z) ((y) ^ ((x) | ~(z)))

// One 64-byte block; the word loads are byte-wise, so the result does not
// depend on the host's byte order or alignment.
void transform(md5file_context* ctx, const unsigned char* block)
{
    uint32_t x[16];
    for (int i = 0; i < 16; ++i) x[i] = load32(block + 4 * i);
    uint32_t a = ctx->a, b = ctx->b, c = ctx->c, d = ctx->d;

    MD5_STEP(MD5_F, a, b, c, d, x[0], 0xd76aa478, 7);
    MD5_STEP(MD5_F, d, a, b, c, x[1], 0xe8c7b756, 12);
    MD5_STEP(MD5_F, c, d, a, b, x[2], 0x242070db, 17);
    MD5_STEP(MD5_F, b, c, d, a, x[3], 0xc1bdceee, 22);
    MD5_STEP(MD5_F, a, b, c, d, x[4], 0xf57c0faf, 7);
    MD5_STEP(MD5_F, d, a, b, c, x[5], 0x4787c62a, 12);
    MD5_STEP(MD5_F, c, d, a, b, x[6], 0xa8304613, 17);
    MD5_STEP(MD5_F, b, c, d, a, x[7], 0xfd469501, 22);
    MD5_STEP(MD5_F, a, b, c, d, x[8], 0x698098d8, 7);
    MD5_STEP(MD5_F, d, a, b, c, x[9], 0x8b44f7af, 12);
    MD5_STEP(MD5_F, c, d, a, b, x[10], 0xffff5bb1, 17);
    MD5_STEP(MD5_F, b, c, d, a, x[11], 0x895cd7be, 22);
    MD5_STEP(MD5_F, a, b, c, d, x[12], 0x6b901122, 7);
    MD5_STEP(MD5_F, d, a, b, c, x[13], 0xfd987193, 12);
    MD5_STEP(MD5_F, c, d, a, b, x[14], 0xa679438e, 17);
    MD5_STEP(MD5_F, b, c, d, a, x[15], 0x49b40821, 22);

    MD5_STEP(MD5_G, a, b, c, d, x[1], 0xf61e2562, 5);
    MD5_STEP(MD5_G, d, a, b, c, x[6], 0xc040b340, 9);
    MD5_STEP(MD5_G, c, d, a, b, x[11], 0x265e5a51, 14);
    MD5_STEP(MD5_G, b, c, d, a, x[0], 0xe9b6c7aa, 20);
    MD5_STEP(MD5_G, a, b, c, d, x[5], 0xd62f105d, 5);
    MD5_STEP(MD5_G, d, a, b, c, x[10], 0x02441453, 9);
    MD5_STEP(MD5_G, c, d, a, b, x[15], 0xd8a1e681, 14);
    MD5_STEP(MD5_G, b, c, d, a, x[4], 0xe7d3fbc8, 20);
    MD5_STEP(MD5_G, a, b, c, d, x[9], 0x21e1cde6, 5);
    MD5_STEP(MD5_G, d, a, b, c, x[14], 0xc33707d6, 9);
    MD5_STEP(MD5_G, c, d, a, b, x[3], 0xf4d50d87, 14);
    MD5_STEP(MD5_G, b, c, d, a, x[8], 0x455a14ed, 20);
    MD5_STEP(MD5_G, a, b, c, d, x[13], 0xa9e3e905, 5);
    MD5_STEP(MD5_G, d, a, b, c, x[2], 0xfcefa3f8, 9);
    MD5_STEP(MD5_G, c, d, a, b, x[7], 0x676f02d9, 14);
    MD5_STEP(MD5_G, b, c, d, a, x[12], 0x8d2a4c8a, 20);

    MD5_STEP(MD5_H, a, b, c, d, x[5], 0xfffa3942, 4);
    MD5_STEP(MD5_H, d, a, b, c, x[8], 0x8771f681, 11);
    MD5_STEP(MD5_H, c, d, a, b, x[11], 0x6d9d6122, 16);
    MD5_STEP(MD5_H, b, c, d, a, x[14], 0xfde5380c, 23);
    MD5_STEP(MD5_H, a, b, c, d, x[1], 0xa4beea44, 4);
    MD5_STEP(MD5_H, d, a, b, c, x[4], 0x4bdecfa9, 11);
    MD5_STEP(MD5_H, c, d, a, b, x[7], 0xf6bb4b60, 16);
    MD5_STEP(MD5_H, b, c, d, a, x[10], 0xbebfbc70, 23);
    MD5_STEP(MD5_H, a, b, c, d, x[13], 0x289b7ec6, 4);
    MD5_STEP(MD5_H, d, a, b, c, x[0], 0xeaa127fa, 11);
    MD5_STEP(MD5_H, c, d, a, b, x[3], 0xd4ef3085, 16);
    MD5_STEP(MD5_H, b, c, d, a, x[6], 0x04881d05, 23);
    MD5_STEP(MD5_H, a, b, c, d, x[9], 0xd9d4d039, 4);
    MD5_STEP(MD5_H, d, a, b, c, x[12], 0xe6db99e5, 11);
    MD5_STEP(MD5_H, c, d, a, b, x[15], 0x1fa27cf8, 16);
    MD5_STEP(MD5_H, b, c, d, a, x[2], 0xc4ac5665, 23);

    MD5_STEP(MD5_I, a, b, c, d, x[0], 0xf4292244, 6);
    MD5_STEP(MD5_I, d, a, b, c, x[7], 0x432aff97, 10);
    MD5_STEP(MD5_I, c, d, a, b, x[14], 0xab9423a7, 15);
    MD5_STEP(MD5_I, b, c, d, a, x[5], 0xfc93a039, 21);
    MD5_STEP(MD5_I, a, b, c, d, x[12], 0x655b59c3, 6);
    MD5_STEP(MD5_I, d, a, b, c, x[3], 0x8f0ccc92, 10);
    MD5_STEP(MD5_I, c, d, a, b, x[10], 0xffeff47d, 15);
    MD5_STEP(MD5_I, b, c, d, a, x[1], 0x85845dd1, 21);
    MD5_STEP(MD5_I, a, b, c, d, x[8], 0x6fa87e4f, 6);
    MD5_STEP(MD5_I, d, a, b, c, x[15], 0xfe2ce6e0, 10);
    MD5_STEP(MD5_I, c, d, a, b, x[6], 0xa3014314, 15);
    MD5_STEP(MD5_I, b, c, d, a, x[13], 0x4e0811a1, 21);
    MD5_STEP(MD5_I, a, b, c, d, x[4], 0xf7537e82, 6);
    MD5_STEP(MD5_I, d, a, b, c, x[11], 0xbd3af235, 10);
    MD5_STEP(MD5_I, c, d, a, b, x[2], 0x2ad7d2bb, 15);
    MD5_STEP(MD5_I, b, c, d, a, x[9], 0xeb86d391, 21);

    ctx->a += a;
    ctx->b += b;
    ctx->c += c;
    ctx->d += d;
}

// Bytes already waiting in the block buffer.
inline unsigned buffered(const md5file_context* ctx) { return (ctx->lengthBits[0] >> 3) & 63u; }

}  // namespace

extern "C" {

void md5file_clear(md5file_context* ctx)
{
    ctx->a = 0x67452301;
    ctx->b = 0xefcdab89;
    ctx->c = 0x98badcfe;
    ctx->d = 0x10325476;
    ctx->lengthBits[0] = ctx->lengthBits[1] = 0;
}

void md5file_addn(md5file_context* ctx, void const* data, unsigned int length)
{
    if (length == 0) return;
    const auto* p = static_cast<const unsigned char*>(data);
    unsigned have = buffered(ctx);

    const uint32_t before = ctx->lengthBits[0];
    ctx->lengthBits[0] += length << 3;
    if (ctx->lengthBits[0] < before) ++ctx->lengthBits[1];
    ctx->lengthBits[1] += length >> 29;

    if (have) {
        const unsigned take = 64 - have;
        if (length < take) {
            std::memcpy(ctx->block + have, p, length);
            return;
        }
        std::memcpy(ctx->block + have, p, take);
        transform(ctx, ctx->block);
        p += take;
        length -= take;
    }
    for (; length >= 64; p += 64, length -= 64) transform(ctx, p);
    if (length) std::memcpy(ctx->block, p, length);
}

void md5file_add(md5file_context* ctx, int byte)
{
    const unsigned char b = static_cast<unsigned char>(byte);
    md5file_addn(ctx, &b, 1);
}

void md5file_hash(md5file_context* ctx, unsigned char digest[16])
{
    unsigned char length[8];
    store32(length, ctx->lengthBits[0]);
    store32(length + 4, ctx->lengthBits[1]);

    // Pad with 0x80 then zeros up to 56 bytes into a block, then the length.
    static const unsigned char padding[64] = {0x80};
    const unsigned have = buffered(ctx);
    const unsigned padLength = have < 56 ? 56 - have : 120 - have;
    md5file_addn(ctx, padding, padLength);
    md5file_addn(ctx, length, 8);

    store32(digest, ctx->a);
    store32(digest + 4, ctx->b);
    store32(digest + 8, ctx->c);
    store32(digest + 12, ctx->d);
}

void md5file_sprint_hash(md5file_context* ctx, char* out)
{
    static const char hexDigits[] = "0123456789abcdef";
    unsigned char digest[16];
    md5file_hash(ctx, digest);
    for (int i = 0; i < 16; ++i) {
        out[2 * i] = hexDigits[digest[i] >> 4];
        out[2 * i + 1] = hexDigits[digest[i] & 15];
    }
    out[32] = '\0';
}

char* md5_checksum(char const* text)
{
    if (!text || !*text) return nullptr;
    char* result = static_cast<char*>(std::malloc(36));
    if (!result) return nullptr;
    md5file_context ctx;
    md5file_clear(&ctx);
    md5file_addn(&ctx, text, static_cast<unsigned int>(std::strlen(text)));
    md5file_sprint_hash(&ctx, result);
    return result;
}

}  // extern "C"
