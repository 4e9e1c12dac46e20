#include "scene.h"

#include "editor/panel/dictionary.h"

#include <gmock/gmock.h>

#include <algorithm>
#include <filesystem>
#include <map>

namespace gui {
namespace {

namespace fs = std::filesystem;
using testing::HasSubstr;
using matcher = testing::Matcher<const std::string &>;

matcher numbered(const std::string &verb, int number)
{
    const auto value = [](const std::string &text) { return std::stoi(text); };
    return verb == "above" ? matcher(testing::ResultOf(value, testing::Gt(number)))
                           : matcher(testing::ResultOf(value, testing::Lt(number)));
}

matcher expected(const std::string &verb, const std::string &text)
{
    if (verb == "has")
        return HasSubstr(text);
    if (verb == "lacks")
        return testing::Not(HasSubstr(text));
    if (verb == "starts")
        return testing::StartsWith(text);
    if (verb == "ends")
        return testing::EndsWith(text);
    if (verb == "matches")
        return testing::MatchesRegex(text);
    if (verb == "unlike")
        return testing::Ne(text);
    return verb == "is" ? matcher(testing::Eq(text)) : numbered(verb, std::stoi(text));
}

bool is_check(const std::string &verb)
{
    static const std::vector<std::string> verbs{"is",      "has",    "lacks", "starts", "ends",
                                                "matches", "unlike", "above", "below",  "becomes"};
    return std::find(verbs.begin(), verbs.end(), verb) != verbs.end();
}

} // namespace

Scene::~Scene()
{
    zel::release_dictionaries();
    g_unsetenv("ENCHANT_CONFIG_DIR");
}

std::string Scene::said(std::string text) const
{
    for (std::size_t at = 0; (at = text.find("FOLDER", at)) != text.npos; at += folder.size())
        text.replace(at, std::strlen("FOLDER"), folder);
    return text;
}

std::string Scene::in_folder(const std::string &name) const
{
    if (name.find('*') != name.npos)
        for (const auto &entry : fs::directory_iterator(fs::path(path(name)).parent_path()))
            if (g_pattern_match_simple(path(name).c_str(), entry.path().c_str()) != 0)
                return entry.path();
    return path(name);
}

void Scene::check(const zel_test::row &row)
{
    const std::string &verb = row[0];
    const std::string wanted = said(row[2]);
    if (verb == "becomes")
        wait_for([&] { return look(said(row[1])) == wanted; });
    EXPECT_THAT(look(said(row[1])), expected(verb == "becomes" ? "is" : verb, wanted)) << row[3];
}

// The row behind the block that this one opens.
std::size_t Scene::end_of(std::size_t at, std::size_t limit) const
{
    const bool in_box = rows_[at][0] == "in the box";
    int depth = 0;
    for (std::size_t next = at + 1; next < limit; ++next) {
        const std::string &verb = rows_[next][0];
        if (verb == "start" && !in_box)
            return next;
        if (verb == "end" && depth-- == 0)
            return next;
        depth += verb == "in the box" ? 1 : 0;
    }
    EXPECT_FALSE(in_box) << "a box without an end";
    return limit;
}

void Scene::play(std::size_t from, std::size_t to)
{
    for (std::size_t at = from; at < to && !HasFatalFailure() && !IsSkipped(); ++at) {
        const zel_test::row &row = rows_[at];
        const std::string &verb = row[0];
        SCOPED_TRACE("line " + std::to_string(row.line) + ": " + verb + " " + row[1]);
        if (verb == "start") {
            const std::size_t end = end_of(at, to);
            const std::string file = row.texts.size() == 1 ? "notes.lang-src" : row[1];
            printed = run_editor(file.empty() ? file : path(file), [&] { play(at + 1, end); });
            at = end < to && rows_[end][0] == "start" ? end - 1 : end;
        } else if (verb == "in the box") {
            const std::size_t end = end_of(at, to);
            answer([this, at, end](GtkWidget *dialog) {
                boxes_.push_back(dialog);
                play(at + 1, end);
                boxes_.pop_back();
            });
            at = end;
        } else if (verb == "note") {
            noted = look(said(row[1]));
        } else if (verb.ends_with(" noted")) {
            const std::string how = verb.substr(0, verb.find(' '));
            EXPECT_THAT(look(said(row[1])), expected(how == "as" ? "is" : how, noted)) << row[2];
        } else if (is_check(verb)) {
            check(row);
        } else if (!act(*this, row)) {
            FAIL() << "no such verb";
        }
    }
}

namespace {

std::string text_of_rows(const Scene::rows_t &rows, const std::string &section)
{
    std::string text;
    for (const zel_test::row &row : rows)
        if (row.section == section)
            for (const std::string &line : row.texts)
                text += line + "\n";
    return text;
}

// The sources of all files, by file and section: what "source" NAME writes.
std::map<std::string, std::string> named_sources;

bool register_scenes()
{
    for (const auto &entry : fs::directory_iterator(LANG_SOURCE_ROOT "/tests/gui/scenes")) {
        const std::string file = entry.path().filename();
        const Scene::rows_t all = zel_test::rows_of("gui/scenes/" + file);
        const std::string source = text_of_rows(all, "source");
        for (std::size_t at = 0; at < all.size();) {
            const std::string section = all[at].section;
            Scene::rows_t rows;
            if (!source.empty())
                rows.push_back({section, 0, {"file", "notes.lang-src", source}});
            const int line = all[at].line;
            for (; at < all.size() && all[at].section == section; ++at)
                rows.push_back(all[at]);
            const std::size_t point = section.find('.');
            if (point == section.npos) {
                named_sources.emplace(section, text_of_rows(all, section));
                continue;
            }
            testing::RegisterTest(section.substr(0, point).c_str(),
                                  section.substr(point + 1).c_str(), nullptr, nullptr,
                                  entry.path().c_str(), line,
                                  [rows]() -> Editor * { return new Scene(rows); });
        }
    }
    return true;
}
const bool registered = register_scenes();

} // namespace

std::string named_source(const std::string &name) { return named_sources.at(name); }

} // namespace gui
