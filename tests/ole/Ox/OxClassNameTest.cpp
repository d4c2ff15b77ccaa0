#include "ole/Ox/OxClassName.h"

#include <gtest/gtest.h>

class ClassNameTestOuter {
public:
    class Inner {};
};

namespace ClassNameTestSpace {
class Thing {};
}  // namespace ClassNameTestSpace

namespace {

TEST(ClassName, OfAClassIsItsNameAsWritten) {
    EXPECT_STREQ(Ox::classNameOf(typeid(ClassNameTestOuter)).c_str(), "ClassNameTestOuter");
}

TEST(ClassName, IsFullyQualified) {
    EXPECT_STREQ(Ox::classNameOf(typeid(ClassNameTestSpace::Thing)).c_str(), "ClassNameTestSpace::Thing");
    EXPECT_STREQ(Ox::classNameOf(typeid(ClassNameTestOuter::Inner)).c_str(), "ClassNameTestOuter::Inner");
}

TEST(ClassName, OfABuiltInTypeIsItsKeyword) {
    EXPECT_STREQ(Ox::classNameOf(typeid(int)).c_str(), "int");
}

}  // namespace
