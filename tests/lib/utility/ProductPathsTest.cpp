#include <gtest/gtest.h>

#include "utility/ProductPaths.h"

namespace {

using tvk::ProductPaths;

class ProductPathsTest : public testing::Test {
protected:
    ~ProductPathsTest() override { ProductPaths::set(ProductPaths::kHomeRoot, ProductPaths::kUserData); }
};

TEST_F(ProductPathsTest, OnTheAmplifierEveryPathIsItsOwnPlace) {
    for (const char* const path :
         {"/home/root/IRs/a.wav", "/mnt/user-data/userIRs/b.wav", "/tmp/c.wav", "d", ""})
        EXPECT_EQ(ProductPaths::resolve(path), path);
}

TEST_F(ProductPathsTest, ElsewhereTheTwoFoldersLieWhereTheyWereSaidTo) {
    ProductPaths::set("/desk/home/root", "/desk/mnt/user-data");
    EXPECT_EQ(ProductPaths::resolve("/home/root/IRs/a.wav"), "/desk/home/root/IRs/a.wav");
    EXPECT_EQ(ProductPaths::resolve("/mnt/user-data/b"), "/desk/mnt/user-data/b");
    EXPECT_EQ(ProductPaths::resolve("/home/root"), "/desk/home/root");
}

TEST_F(ProductPathsTest, OtherPathsStay) {
    ProductPaths::set("/desk/home/root", "/desk/mnt/user-data");
    for (const char* const path : {"/home/rooted/a", "/home", "home/root/a", "/tmp/home/root/a", "", "/"})
        EXPECT_EQ(ProductPaths::resolve(path), path);
}

TEST_F(ProductPathsTest, APlaceIsNotMovedAgain) {
    ProductPaths::set("/home/root/desk/home/root", "/mnt/user-data");
    const std::string place = ProductPaths::resolve("/home/root/IRs/a.wav");
    EXPECT_EQ(place, "/home/root/desk/home/root/IRs/a.wav");
    EXPECT_EQ(ProductPaths::resolve(place), place);
}

TEST_F(ProductPathsTest, UserDataIsToldByItsNameAndByItsPlace) {
    ProductPaths::set("/desk/home/root", "/desk/mnt/user-data");
    EXPECT_TRUE(ProductPaths::isUserData("/mnt/user-data/userIRs/a.wav"));
    EXPECT_TRUE(ProductPaths::isUserData("/desk/mnt/user-data/userIRs/a.wav"));
    EXPECT_FALSE(ProductPaths::isUserData("/home/root/IRs/a.wav"));
    EXPECT_FALSE(ProductPaths::isUserData("/desk/home/root/IRs/a.wav"));
    EXPECT_FALSE(ProductPaths::isUserData("/mnt/user-database"));
}

}  // namespace
