// What must hold of every merge, on made-up sources with doubled and empty names, moved groups and
// renamed languages.

#include "merge/made-source.h"
#include "merge/merge3.h"
#include "source/lang-write.h"
#include "source/source-text.h"
#include "test-support.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <string>

namespace {

using zel::conflict;
using zel::merge_sources;
using zel::side;
using zel_test::counts;
using zel_test::describe;
using zel_test::source_maker;

// A base and its two sides, made anew from the seed as often as they are wanted.
struct family {
    unsigned seed;
    source_maker::names names =
        seed % 2 == 0 ? source_maker::names::any : source_maker::names::once;
    int changes = static_cast<int>(seed % 23);

    source_guard base() const { return source_maker(seed, 'a', names).make(); }
    source_guard changed(char mark, int times, std::vector<std::string> *texts = nullptr) const
    {
        source_guard source = base();
        source_maker maker(seed * 2 + (mark == 'o' ? 0 : 1), mark, names);
        maker.change(*source, times);
        if (texts != nullptr)
            *texts = maker.texts();
        return source;
    }
    source_guard ours(std::vector<std::string> *texts = nullptr) const
    {
        return changed('o', changes, texts);
    }
    source_guard theirs(std::vector<std::string> *texts = nullptr) const
    {
        return changed('t', changes, texts);
    }
};

std::string state(const source_guard &source) { return describe(source.get(), counts::yes); }

std::string merged(const source_guard &base, source_guard &&ours, source_guard &&theirs,
                   side prefer = side::neither)
{
    const std::string before = state(base);
    merge_sources(base.get(), ours.get(), theirs.get(), prefer);
    EXPECT_EQ(state(base), before);
    return state(ours);
}

std::string line(const conflict &one, bool swapped)
{
    const auto name = [](const std::optional<std::string> &part) { return part.value_or("-"); };
    const auto value = [](const zel::field_value &v) {
        return (v.is == zel::field_value::none ? "none " : "") + v.shown;
    };
    return name(one.group) + "|" + name(one.item) + "|" + name(one.language) + "|" + one.field +
           "|" + value(swapped ? one.theirs : one.ours) + "|" +
           value(swapped ? one.ours : one.theirs);
}

std::vector<std::string> lines(const std::vector<conflict> &conflicts, bool swapped)
{
    std::vector<std::string> out;
    for (const conflict &one : conflicts)
        out.push_back(line(one, swapped));
    std::sort(out.begin(), out.end());
    return out;
}

void one_side_alone_is_taken_whole(unsigned seeds)
{
    for (unsigned seed = 0; seed < seeds; ++seed) {
        const family made{seed};
        const source_guard base = made.base();
        const std::string changed = state(made.ours());
        ASSERT_EQ(merged(base, made.base(), made.ours()), changed) << "theirs alone, seed " << seed;
        ASSERT_EQ(merged(base, made.ours(), made.base()), changed) << "ours alone, seed " << seed;
        ASSERT_EQ(merged(base, made.ours(), made.ours()), changed) << "both, seed " << seed;
    }
}

void the_sides_see_the_same_conflicts(unsigned seeds)
{
    std::size_t seen = 0;
    for (unsigned seed = 0; seed < seeds; ++seed) {
        const family made{seed};
        const source_guard base = made.base();
        source_guard ours = made.ours();
        source_guard theirs = made.theirs();
        const auto here = merge_sources(base.get(), ours.get(), theirs.get(), side::neither);
        source_guard our_side = made.ours();
        source_guard their_side = made.theirs();
        const auto there =
            merge_sources(base.get(), their_side.get(), our_side.get(), side::neither);
        ASSERT_EQ(lines(here, false), lines(there, true)) << "seed " << seed;
        seen += here.size();
    }
    EXPECT_GT(seen, seeds / 4);
}

// Of names that a list has twice the first one may be gone then, and the second one the first.
void merging_again_changes_nothing(unsigned seeds)
{
    for (unsigned seed = 0; seed < seeds; ++seed) {
        family made{seed};
        made.names = source_maker::names::once;
        const source_guard base = made.base();
        for (const side prefer : {side::neither, side::ours, side::theirs}) {
            source_guard ours = made.ours();
            source_guard theirs = made.theirs();
            merge_sources(base.get(), ours.get(), theirs.get(), prefer);
            const std::string once = state(ours);
            ASSERT_EQ(merged(base, std::move(ours), made.theirs(), prefer), once)
                << "seed " << seed << " prefer " << static_cast<int>(prefer);
        }
    }
}

void no_new_text_is_lost(unsigned seeds)
{
    for (unsigned seed = 0; seed < seeds; ++seed) {
        const family made{seed};
        const source_guard base = made.base();
        std::vector<std::string> texts;
        source_guard ours = made.ours(&texts);
        const std::string our_state = state(ours);
        source_guard theirs = made.theirs();
        const std::string their_state = state(theirs);
        std::vector<std::string> more;
        made.theirs(&more);
        texts.insert(texts.end(), more.begin(), more.end());
        std::string result;
        for (const conflict &one :
             merge_sources(base.get(), ours.get(), theirs.get(), side::neither))
            result += line(one, false) + "\n";
        result += state(ours);
        for (const std::string &text : texts) {
            const bool given = our_state.find(text) != std::string::npos ||
                               their_state.find(text) != std::string::npos;
            ASSERT_TRUE(!given || result.find(text) != std::string::npos)
                << "seed " << seed << " text " << text;
        }
    }
}

void the_result_reads_back(unsigned seeds)
{
    const zel_test::temp_dir dir(zel_test::temp_dir::enter::yes);
    for (unsigned seed = 0; seed < seeds; seed += 25) {
        const family made{seed};
        source_guard ours = made.ours();
        source_guard theirs = made.theirs();
        merge_sources(made.base().get(), ours.get(), theirs.get(), side::neither);
        std::remove("merged.lang-src");
        ASSERT_EQ(lang_write_file("merged.lang-src", ours.get()), 0);
        std::string said;
        const auto again = zel::read_source(
            "merged.lang-src",
            {0, [&](const zel::read_message &message) { said += message.row->meaning; }, nullptr});
        ASSERT_EQ(said, "") << "seed " << seed;
        ours->version = 1; // which is always written
        ASSERT_EQ(describe(again.source.get()), describe(ours.get())) << "seed " << seed;
    }
}

void all_hold(unsigned seeds)
{
    one_side_alone_is_taken_whole(seeds);
    the_sides_see_the_same_conflicts(seeds);
    merging_again_changes_nothing(seeds);
    no_new_text_is_lost(seeds);
    the_result_reads_back(seeds);
}

TEST(MergeProperties, HoldForAFewFamilies) { all_hold(30); }
TEST(MergePropertiesSlow, HoldForManyFamilies) { all_hold(600); }

} // namespace
