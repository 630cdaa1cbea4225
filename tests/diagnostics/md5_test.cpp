#include <gtest/gtest.h>

#include <algorithm>
#include <cstdlib>
#include <cstring>
#include <memory>
#include <string>

#include "invscan/com/md5.h"

namespace {

struct FreeDeleter {
    void operator()(char* p) const { std::free(p); }
};
using Digest = std::unique_ptr<char, FreeDeleter>;

// RFC 1321, appendix A.5.
const struct {
    const char* text;
    const char* digest;
} kRfcVectors[] = {
    {"", "d41d8cd98f00b204e9800998ecf8427e"},
    {"a", "0cc175b9c0f1b6a831c399e269772661"},
    {"abc", "900150983cd24fb0d6963f7d28e17f72"},
    {"message digest", "f96b697d7cb7938d525a2f31aaf161d0"},
    {"abcdefghijklmnopqrstuvwxyz", "c3fcd3d76192e4007dfb496cca67e13b"},
    {"ABCDEFGHIJKLMNOPQRSTUVWXYZabcdefghijklmnopqrstuvwxyz0123456789", "d174ab98d277d9f5a5611c2c9f419d9f"},
    {"12345678901234567890123456789012345678901234567890123456789012345678901234567890",
     "57edf4a22be3c955ac49da2e2107b67a"},
};

std::string incremental(const std::string& text, size_t chunk)
{
    md5file_context ctx;
    md5file_clear(&ctx);
    for (size_t at = 0; at < text.size(); at += chunk) {
        const size_t n = std::min(chunk, text.size() - at);
        if (n == 1)
            md5file_add(&ctx, static_cast<unsigned char>(text[at]));
        else
            md5file_addn(&ctx, text.data() + at, static_cast<unsigned>(n));
    }
    char out[33];
    md5file_sprint_hash(&ctx, out);
    return out;
}

TEST(Md5, RfcVectorsOneShotAndIncrementalAgree)
{
    for (const auto& v : kRfcVectors) {
        SCOPED_TRACE(v.text);
        if (*v.text) {
            Digest d(md5_checksum(v.text));
            ASSERT_NE(d, nullptr);
            EXPECT_STREQ(d.get(), v.digest);
        }
        for (size_t chunk : {1u, 3u, 7u, 63u, 64u, 65u, 1000u})
            EXPECT_EQ(incremental(v.text, chunk), v.digest) << "chunk " << chunk;
    }
}

TEST(Md5, NullAndEmptyGiveNull)
{
    EXPECT_EQ(md5_checksum(nullptr), nullptr);
    EXPECT_EQ(md5_checksum(""), nullptr);
}

TEST(Md5, LengthsAroundBlockEdgesMatchOneShot)
{
    // Every length from 0 to 200 crosses the 55/56/64-byte padding cases; the
    // digest of a long text fed in odd pieces must match feeding it whole.
    std::string text;
    for (int i = 0; i < 200; ++i) {
        const std::string whole = incremental(text, text.size() + 1);
        EXPECT_EQ(incremental(text, 13), whole) << "length " << text.size();
        EXPECT_EQ(incremental(text, 1), whole) << "length " << text.size();
        text.push_back(static_cast<char>('!' + (i * 7) % 90));
    }
    // A million 'a's: the classic long vector.
    EXPECT_EQ(incremental(std::string(1000000, 'a'), 4093), "7707d6ae4e027c70eea2a935c2296f21");
}

TEST(Md5, RawDigestBytesAndLowercaseHex)
{
    md5file_context ctx;
    md5file_clear(&ctx);
    md5file_addn(&ctx, "abc", 3);
    unsigned char digest[16];
    md5file_hash(&ctx, digest);
    EXPECT_EQ(digest[0], 0x90);
    EXPECT_EQ(digest[15], 0x72);

    Digest d(md5_checksum("\xff\xfe high bytes"));
    ASSERT_NE(d, nullptr);
    EXPECT_EQ(std::string(d.get()).find_first_not_of("0123456789abcdef"), std::string::npos);
    EXPECT_EQ(std::strlen(d.get()), 32u);
}

}  // namespace
