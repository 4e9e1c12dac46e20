// Same and similar texts among many.

#include "assist/similar.h"

#include <gtest/gtest.h>

namespace {

class Similar : public testing::Test {
protected:
    void add_all()
    {
        index.reset(texts.size());
        for (std::uint32_t item = 0; item < texts.size(); ++item)
            index.add(item);
    }
    // Which one is the most like an item, among those that are not hidden; -1 for none.
    int best(std::uint32_t item, int hidden = -1)
    {
        const auto found = index.best(
            item, [hidden](std::uint32_t other) { return static_cast<int>(other) != hidden; });
        is_same = found && found->likeness == 1;
        return found ? static_cast<int>(found->item) : -1;
    }

    std::vector<std::string> texts;
    zel::assist::similar_texts index{[this](std::uint32_t item) { return texts[item]; }};
    bool is_same = false;
};

TEST_F(Similar, TheSameTextComesFirstThenTheMostSimilar)
{
    texts = {"Save file", "Save files", "Save file", "Save the file", "Print", "", ""};
    add_all();
    EXPECT_EQ(best(0), 2);
    EXPECT_TRUE(is_same);
    EXPECT_EQ(best(0, 2), 1);
    EXPECT_FALSE(is_same);
    EXPECT_EQ(best(3), 0) << "the first of two";
    EXPECT_EQ(best(4), -1);
}

TEST_F(Similar, CapitalsAreAlikeButNotTheSame)
{
    texts = {"ÖFFNEN", "öffnen", "Öffnung"};
    add_all();
    EXPECT_EQ(best(0), 1);
    texts[1] = "x";
    EXPECT_EQ(best(0), -1) << "as it is now, not as it was added";
}

TEST_F(Similar, ATextThatHasChangedIsFoundOnceItIsAddedAgain)
{
    texts = {"Save file", "Print", "Load"};
    add_all();
    texts[1] = "Save file";
    index.add(1);
    EXPECT_EQ(best(0), 1);
    texts[1] = "Save a file";
    EXPECT_EQ(best(0), 1);
    EXPECT_FALSE(is_same);
}

TEST_F(Similar, ManyItemsAreToldApart)
{
    constexpr int many = 0x10000;
    texts.assign(2 * many + 1, "x");
    texts[1] = "Save file";
    texts[many] = texts[many + 1] = "Print";
    texts[2 * many] = "Save a file";
    add_all();
    EXPECT_EQ(best(2 * many), 1);
    EXPECT_EQ(best(1), 2 * many);
    EXPECT_EQ(best(many), many + 1);
}

TEST_F(Similar, LongTextsAreComparedAsAWhole)
{
    texts = {std::string(100000, 'a') + "x", std::string(100000, 'a') + "x",
             std::string(100000, 'a') + "y", "aaaaaa"};
    add_all();
    EXPECT_EQ(best(0), 1);
    EXPECT_EQ(best(2), -1);
    EXPECT_EQ(best(3), -1);
}

} // namespace
