#include "tools/playfile/Md5.h"

#include <gtest/gtest.h>

#include <string>

namespace {

std::string sumOfText(std::string const& text) {
    return cli::asHex(cli::Md5::of(text.data(), text.size()));
}

TEST(Md5, KnowsTheSumsOfThePublishedTexts) {
    EXPECT_EQ(sumOfText(""), "d41d8cd98f00b204e9800998ecf8427e");
    EXPECT_EQ(sumOfText("a"), "0cc175b9c0f1b6a831c399e269772661");
    EXPECT_EQ(sumOfText("abc"), "900150983cd24fb0d6963f7d28e17f72");
    EXPECT_EQ(sumOfText("message digest"), "f96b697d7cb7938d525a2f31aaf161d0");
    EXPECT_EQ(sumOfText("abcdefghijklmnopqrstuvwxyz"), "c3fcd3d76192e4007dfb496cca67e13b");
    EXPECT_EQ(sumOfText("ABCDEFGHIJKLMNOPQRSTUVWXYZabcdefghijklmnopqrstuvwxyz0123456789"),
              "d174ab98d277d9f5a5611c2c9f419d9f");
    EXPECT_EQ(sumOfText("1234567890123456789012345678901234567890"
                        "1234567890123456789012345678901234567890"),
              "57edf4a22be3c955ac49da2e2107b67a");
}

TEST(Md5, GivesOneSumHoweverTheBytesAreCut) {
    std::string const text(1000, 'x');
    for (std::size_t const piece : {1U, 7U, 55U, 56U, 63U, 64U, 65U, 200U}) {
        cli::Md5 sum;
        for (std::size_t begin = 0; begin < text.size(); begin += piece) {
            sum.add(text.data() + begin, std::min(piece, text.size() - begin));
        }
        EXPECT_EQ(cli::asHex(sum.finish()), sumOfText(text)) << "pieces of " << piece;
    }
}

TEST(Md5, FillsTheLastBlockRightAtEveryLength) {
    EXPECT_EQ(sumOfText(std::string(55, 'a')), "ef1772b6dff9a122358552954ad0df65");
    EXPECT_EQ(sumOfText(std::string(56, 'a')), "3b0c8ac703f828b04c6c197006d17218");
    EXPECT_EQ(sumOfText(std::string(63, 'a')), "b06521f39153d618550606be297466d5");
    EXPECT_EQ(sumOfText(std::string(64, 'a')), "014842d480b571495a4a0363793f7367");
    EXPECT_EQ(sumOfText(std::string(65, 'a')), "c743a45e0d2e6a95cb859adae0248435");
}

}  // namespace
