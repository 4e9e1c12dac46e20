#include "kit/support/news.h"
#include "kit/support/output.h"
#include "merge/word-difference.h"
#include "source/entry.h"
#include "support/text.h"

#include <glib.h>

namespace zel::kit {

namespace {

constexpr std::size_t columns = 72;

std::string summary_of(const news &all)
{
    return "since " + all.since + ": " + with_commas(all.added.size()) + " new, " +
           with_commas(all.changed.size()) + " changed, " + with_commas(all.gone.size()) +
           " gone, " + with_commas(all.words) + (all.words == 1 ? " word" : " words");
}

std::string summary_of(const language_news &one)
{
    std::string out = std::string(one.name) + ": ";
    if (one.missing + one.as_before == 0)
        return out + "nothing to do";
    if (one.missing != 0)
        out += with_commas(one.missing) + " missing, ";
    if (one.as_before != 0)
        out += with_commas(one.as_before) + " as before the change, ";
    return out + with_commas(one.words) + (one.words == 1 ? " word" : " words");
}

std::string joined(const std::vector<const char *> &names)
{
    std::string out;
    for (const char *name : names)
        (out += out.empty() ? "" : ", ") += name;
    return out;
}

// What stands below an item, a paragraph each.
std::vector<std::string> notes_of(const news_item &one)
{
    std::vector<std::string> out;
    const auto add = [&](const char *label, const std::string &text) {
        if (!text.empty())
            out.push_back(label + text);
    };
    if (one.was != nullptr && shown_key(one.was_group, one.was) != shown_key(one.group, one.item))
        add("was ", shown_key(one.was_group, one.was));
    add("", place_of(one.item));
    add("", std::string(description_of(one.item)));
    add("missing: ", joined(one.missing));
    add("as before: ", joined(one.as_before));
    return out;
}

// Words in lines of at most so many columns; one that is longer stays whole.
class paragraph {
public:
    paragraph(std::string &out, std::string_view first, std::string_view others)
        : out_(out), others_(others), used_(columns_of(first))
    {
        out_ += first;
    }
    void add(std::string_view text)
    {
        for (std::size_t at = 0; at < text.size();) {
            const std::size_t end = std::min(text.find_first_of(" \n\t\r", at), text.size());
            if (end > at)
                add_word(text.substr(at, end - at));
            at = end + 1;
        }
    }
    void end() { out_ += '\n'; }

private:
    void add_word(std::string_view word)
    {
        const std::size_t wide = columns_of(word);
        if (any_ && used_ + 1 + wide > columns) {
            out_.append("\n").append(others_);
            used_ = columns_of(others_);
        } else if (any_) {
            out_ += ' ';
            ++used_;
        }
        out_ += word;
        used_ += wide;
        any_ = true;
    }

    std::string &out_;
    std::string_view others_;
    std::size_t used_;
    bool any_ = false;
};

void append_paragraph(std::string &out, std::string_view first, std::string_view others,
                      std::string_view text)
{
    paragraph lines(out, first, others);
    lines.add(text);
    lines.end();
}

void append_text_item(std::string &out, const news_item &one)
{
    append_paragraph(out, "* ", "  ", shown_key(one.group, one.item));
    for (const std::string &each : notes_of(one))
        append_paragraph(out, "    ", "    ", each);
    // The key shows what is new or gone; only where it is not the text, both are shown.
    if (one.was == nullptr) {
        if (one.text != without_end(view_of(one.item->name)))
            append_paragraph(out, "    ", "    ", kit::quoted(one.text));
        return;
    }
    paragraph lines(out, "    ", "    ");
    for (const word_run &run : compare_words(one.before, one.text))
        lines.add(run.how == word_change::gone    ? "[-" + run.text + "-]"
                  : run.how == word_change::added ? "{+" + run.text + "+}"
                                                  : run.text);
    lines.end();
}

struct part {
    const char *title, *name;
    const std::vector<news_item> &items;
};

std::vector<part> parts_of(const news &all)
{
    return {
        {"Changed", "changed", all.changed}, {"New", "new", all.added}, {"Gone", "gone", all.gone}};
}

void append_names(std::string &out, const char *label, const std::vector<const char *> &names)
{
    out.append(", \"").append(label) += "\": [";
    for (std::size_t i = 0; i < names.size(); ++i) {
        out += i == 0 ? "" : ", ";
        append_json(out, names[i]);
    }
    out += ']';
}

void append_json_item(std::string &out, const news_item &one)
{
    out += "{\"group\": ";
    append_json(out, std::string_view(or_empty(one.group->name)));
    out += ", \"item\": ";
    append_json(out, std::string_view(or_empty(one.item->name)));
    out += ", \"text\": ";
    append_json(out, std::string_view(one.text));
    if (one.was != nullptr) {
        out += ", \"was\": {\"group\": ";
        append_json(out, std::string_view(or_empty(one.was_group->name)));
        out += ", \"item\": ";
        append_json(out, std::string_view(or_empty(one.was->name)));
        out += ", \"text\": ";
        append_json(out, std::string_view(one.before));
        out += '}';
    }
    out += ", \"place\": ";
    append_json(out, std::string_view(place_of(one.item)));
    out += ", \"description\": ";
    append_json(out, description_of(one.item));
    append_names(out, "missing", one.missing);
    append_names(out, "as_before", one.as_before);
    out += '}';
}

void append_html(std::string &out, std::string_view text)
{
    // A source need not be UTF-8, a page is.
    gchar *valid = g_utf8_make_valid(text.data(), static_cast<gssize>(text.size()));
    gchar *escaped = g_markup_escape_text(valid, -1);
    out += escaped;
    g_free(escaped);
    g_free(valid);
}

void append_html_item(std::string &out, const news_item &one)
{
    out += "<dt>";
    append_html(out, shown_key(one.group, one.item));
    out += "</dt>\n<dd>";
    for (const std::string &each : notes_of(one)) {
        append_html(out, each);
        out += "<br>\n";
    }
    if (one.was == nullptr)
        append_html(out, one.text);
    else
        for (const word_run &run : compare_words(one.before, one.text)) {
            const char *tag = run.how == word_change::gone    ? "del"
                              : run.how == word_change::added ? "ins"
                                                              : "span";
            out.append("<").append(tag) += '>';
            append_html(out, run.text);
            out.append("</").append(tag) += "> ";
        }
    out += "</dd>\n";
}

} // namespace

std::string news_text(const news &all)
{
    std::string out;
    append_paragraph(out, "", "", summary_of(all));
    if (!all.languages.empty())
        out += '\n';
    for (const language_news &one : all.languages)
        append_paragraph(out, "", "  ", summary_of(one));
    for (const part &each : parts_of(all)) {
        if (!each.items.empty())
            out.append("\n").append(each.title) += "\n\n";
        for (const news_item &one : each.items)
            append_text_item(out, one);
    }
    return out;
}

std::string news_json(const news &all)
{
    std::string out = "{\"since\": ";
    append_json(out, std::string_view(all.since));
    out += ", \"words\": " + std::to_string(all.words) + ",\n \"languages\": [";
    for (std::size_t i = 0; i < all.languages.size(); ++i) {
        const language_news &one = all.languages[i];
        out += i == 0 ? "\n  {\"language\": " : ",\n  {\"language\": ";
        append_json(out, one.name);
        out += ", \"missing\": " + std::to_string(one.missing) +
               ", \"as_before\": " + std::to_string(one.as_before) +
               ", \"words\": " + std::to_string(one.words) + "}";
    }
    out += ']';
    for (const part &each : parts_of(all)) {
        out.append(",\n \"").append(each.name) += "\": [";
        for (std::size_t i = 0; i < each.items.size(); ++i) {
            out += i == 0 ? "\n  " : ",\n  ";
            append_json_item(out, each.items[i]);
        }
        out += ']';
    }
    return out += "}\n";
}

std::string news_html(const news &all)
{
    std::string out =
        "<!DOCTYPE html>\n<html lang=\"en\">\n<head>\n<meta charset=\"utf-8\">\n<title>";
    append_html(out, summary_of(all));
    // Mail programs keep styles that stand in the page.
    out += "</title>\n<style>\nbody { font-family: sans-serif; max-width: 50em; }\n"
           "dt { font-weight: bold; margin-top: 1em; }\nins { background: #d5f5d5; }\n"
           "del { background: #f9d7d7; }\n</style>\n</head>\n<body>\n<p>";
    append_html(out, summary_of(all));
    out += "</p>\n<ul>\n";
    for (const language_news &one : all.languages) {
        out += "<li>";
        append_html(out, summary_of(one));
        out += "</li>\n";
    }
    out += "</ul>\n";
    for (const part &each : parts_of(all)) {
        if (each.items.empty())
            continue;
        out.append("<h2>").append(each.title) += "</h2>\n<dl>\n";
        for (const news_item &one : each.items)
            append_html_item(out, one);
        out += "</dl>\n";
    }
    return out += "</body>\n</html>\n";
}

} // namespace zel::kit
