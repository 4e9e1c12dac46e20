#include "kit/support/adopter.h"

#include "exchange/input.h"
#include "exchange/key.h"
#include "kit/support/code-include.h"
#include "langlib/lang-fit.h"
#include "source/entry.h"

#include <algorithm>
#include <cstdlib>
#include <cstring>

namespace zel::kit {

namespace {

struct byte_edit {
    std::size_t begin;
    std::size_t end;
    std::string text;
};

// A text as code has it between quotes.
std::string code_literal(std::string_view text)
{
    constexpr std::string_view escaped = "\\\"\n\t\r\a\b";
    constexpr std::string_view letters = "\\\"ntrab";
    std::string out = "\"";
    for (const char c : text)
        if (const std::size_t at = escaped.find(c); at != escaped.npos)
            out.append(1, '\\').append(1, letters[at]);
        else
            out += static_cast<unsigned char>(c) < ' ' ? ' ' : c;
    return out + '"';
}

bool is_blank(std::string_view text) { return text.find_first_not_of(" \t\r\n\\") == text.npos; }

bool is_foreign_word(std::string_view word, call_dialect of)
{
    const std::span<const foreign_form> forms = foreign_forms(of);
    return std::any_of(forms.begin(), forms.end(),
                       [&](const foreign_form &one) { return one.word == word; });
}

bool is_format(const std::string &text) { return format_fits(text, text); }

// A literal without the white space at its end and without the quote behind that.
std::string_view without_literal_end(std::string_view quoted)
{
    quoted.remove_suffix(1);
    while (quoted.size() > 1)
        if (quoted.ends_with(' ') || quoted.ends_with('\t'))
            quoted.remove_suffix(1);
        else if (quoted.ends_with("\\n") || quoted.ends_with("\\t") || quoted.ends_with("\\r"))
            quoted.remove_suffix(2);
        else
            break;
    return quoted;
}

std::string_view file_of_path(std::string_view path)
{
    const std::size_t slash = path.rfind('/');
    return slash == path.npos ? path : path.substr(slash + 1);
}

} // namespace

// The work on one file.
class code_adopter {
public:
    code_adopter(adopter &of, const std::string &path, std::string_view bytes)
        : of_(of), path_(path), bytes_(bytes), tokens_(code_tokens(bytes))
    {
    }

    adopted_code run()
    {
        for (const foreign_call &call : foreign_calls(bytes_, tokens_, of_.how_.from))
            if (const std::string why = turn(call); !why.empty())
                note(call, "not turned: " + why, false);
        if (out_.turned == 0)
            out_.text = bytes_;
        else
            write();
        return std::move(out_);
    }

private:
    // An argument that is a literal, or why it is none.
    struct read_argument {
        std::string text;
        std::size_t pieces = 0;
        std::string why;
        std::string end;   // white space that was taken off the text, as the code has it
        std::string whole; // the text with it
    };

    std::string_view token_text(std::size_t at) const
    {
        return bytes_.substr(tokens_[at].begin, tokens_[at].end - tokens_[at].begin);
    }

    place place_at(std::size_t position)
    {
        if (line_starts_.empty())
            find_lines();
        const auto next = std::upper_bound(line_starts_.begin(), line_starts_.end(), position);
        return {static_cast<std::uint32_t>(next - line_starts_.begin()),
                static_cast<std::uint32_t>(position - *(next - 1))};
    }

    void find_lines()
    {
        line_starts_.push_back(0);
        for (std::size_t at = bytes_.find('\n'); at != bytes_.npos; at = bytes_.find('\n', at + 1))
            line_starts_.push_back(at + 1);
    }

    void note(const foreign_call &call, std::string text, bool is_lacking)
    {
        out_.notes.push_back({place_at(tokens_[call.word].begin), std::move(text), is_lacking});
    }

    read_argument read(const foreign_argument &given) const
    {
        read_argument out;
        std::string_view name;
        bool is_chosen = given.first == given.last;
        for (std::size_t at = given.first; at < given.last; ++at) {
            const code_token &token = tokens_[at];
            if (token.is == code_token::kind::text) {
                ++out.pieces;
                const std::optional<std::string> text = literal_text(token_text(at));
                if (!text)
                    out.why = "the text has an escape that the check does not read";
                out.text += text.value_or("");
            } else if (token.is == code_token::kind::name) {
                name = token_text(at);
            } else if (token.is == code_token::kind::other_text) {
                out.why = "the text is no plain literal";
            } else {
                is_chosen = true;
            }
        }
        if (is_chosen || (out.pieces == 0 && given.last - given.first > 1))
            out.why = "the text is chosen at run time";
        else if (!name.empty())
            out.why = (out.pieces == 0 ? "no text but the name \"" : "the text holds the name \"") +
                      std::string(name) + "\"";
        return out;
    }

    // Why a text cannot be an item; empty where it can.
    static std::string obstacle(const read_argument &text, bool is_form)
    {
        if (!text.why.empty())
            return text.why;
        if (text.text.empty())
            return "the text is empty";
        if (without_end(text.text).size() != text.text.size())
            return "the text ends in white space, which no source keeps";
        if (is_form && text.text.find('|') != std::string::npos)
            return "a form holds \"|\"";
        return {};
    }

    // Why the call as a whole cannot be turned.
    std::string obstacle(const foreign_call &call) const
    {
        if (call.is_open)
            return "its parenthesis has no end";
        if (call.arguments.size() < call.form->least || call.arguments.size() > call.form->most)
            return "the word takes another number of arguments";
        if (counts_object(call) &&
            argument(call, call.form->number).first == argument(call, call.form->number).last)
            return "the word takes another number of arguments";
        if (call.is_split)
            return "a directive stands among its arguments";
        if (call.of_object)
            return of_.how_.from == call_dialect::gettext
                       ? "another library has a word of that name"
                       : "the class of the object is not known";
        if (call.form->is_mark && call.form->comment != 0)
            return "it gives a text and its comment";
        if (call.form->is_mark && is_beside_literal(call))
            return "it is a piece of a longer literal";
        return {};
    }

    // Whether an object's form is asked for, "%n cups" with its number.
    static bool counts_object(const foreign_call &call)
    {
        return call.form->plural == 0 && call.form->number != 0 &&
               call.arguments.size() >= call.form->number;
    }

    // Takes the white space off a text's last literal, where an object can have it back.
    void take_end(const foreign_call &call, read_argument &item) const
    {
        const std::size_t kept = without_end(item.text).size();
        if (of_.how_.from != call_dialect::qt || call.form->is_mark || counts_object(call) ||
            !item.why.empty() || kept == 0 || kept == item.text.size())
            return;
        const std::string_view quoted = token_text(argument(call, call.form->item).last - 1);
        const std::string_view rest = without_literal_end(quoted);
        const std::optional<std::string> last = literal_text(quoted);
        const std::optional<std::string> text = literal_text(std::string(rest) + '"');
        // Other escapes may stand for white space, and the last piece may be nothing else.
        if (rest.size() == 1 || !text || !last || *text != without_end(*last))
            return;
        item.end = quoted.substr(rest.size(), quoted.size() - 1 - rest.size());
        item.whole = item.text;
        item.text.resize(kept);
    }

    // "N_("One") "\0"": what a request is replaced by is no literal that could be joined.
    bool is_beside_literal(const foreign_call &call) const
    {
        const std::uint32_t directive = tokens_[call.word].directive;
        // Directives between the pieces are no part of the literal.
        const auto is_passed = [&](std::size_t at) {
            return directive == 0 && tokens_[at].directive != 0;
        };
        const auto is_literal = [&](std::size_t at) {
            return tokens_[at].directive == directive &&
                   (tokens_[at].is == code_token::kind::text ||
                    tokens_[at].is == code_token::kind::other_text);
        };
        std::size_t behind = call.closing + 1;
        while (behind < tokens_.size() && is_passed(behind))
            ++behind;
        std::size_t before = call.first;
        while (before > 0 && is_passed(before - 1))
            --before;
        return (behind < tokens_.size() && is_literal(behind)) ||
               (before > 0 && is_literal(before - 1));
    }

    const foreign_argument &argument(const foreign_call &call, unsigned number) const
    {
        return call.arguments[number - 1U];
    }
    std::size_t begin_of(const foreign_argument &one) const { return tokens_[one.first].begin; }
    std::size_t end_of(const foreign_argument &one) const { return tokens_[one.last - 1].end; }

    // Turns the call; else says why not.
    std::string turn(const foreign_call &call)
    {
        if (std::string why = obstacle(call); !why.empty())
            return why;
        const foreign_form &form = *call.form;
        read_argument item = read(argument(call, form.item));
        take_end(call, item);
        const bool is_count = form.plural != 0;
        if (std::string why = obstacle(item, is_count || counts_object(call)); !why.empty())
            return why;
        if (counts_object(call) && item.text.find("%Ln") != std::string::npos)
            return "it counts with %Ln";
        std::string name = item.text;
        if (is_count) {
            const read_argument many = read(argument(call, form.plural));
            if (std::string why = obstacle(many, true); !why.empty())
                return why;
            if (many.text == item.text)
                return "both forms are the same text";
            name += "|" + many.text;
        }
        read_argument context;
        if (form.context != 0)
            context = read(argument(call, form.context));
        if (!context.why.empty())
            return "its context: " + context.why;
        // An import names an item by the whole text; a check, by what the code asks for then.
        const bool is_whole = of_.by_name_.count(item.whole) != 0;
        std::string group;
        if (std::string why = find_group(call, context, is_whole ? item.whole : name, group);
            !why.empty())
            return why;
        return replace(call, item, name, context, group);
    }

    bool has_item(const std::string &group, const std::string &name) const
    {
        return of_.items_.find(group.c_str(), name.c_str()) != nullptr;
    }

    // What tells two texts of one class apart; empty where nothing does.
    std::string comment_of(const foreign_call &call) const
    {
        const std::uint8_t at = call.form->comment;
        return at == 0 || call.arguments.size() < at ? "" : read(argument(call, at)).text;
    }

    // The group in which the source has the text. Empty, or why there is none.
    std::string find_group(const foreign_call &call, const read_argument &context,
                           const std::string &name, std::string &group)
    {
        const std::string &scope = context.pieces != 0 ? context.text : call.scope;
        const std::string commented = scope + "|" + comment_of(call);
        if (!scope.empty() && has_item(commented, name))
            group = commented;
        else if (context.pieces != 0 || (!scope.empty() && has_item(scope, name)))
            group = scope;
        else if (of_.how_.by_file)
            group = exchange::stem_of(path_);
        else if (!of_.how_.group.empty())
            group = of_.how_.group;
        else
            return find_held(call, scope, name, group);
        return {};
    }

    std::string find_held(const foreign_call &call, const std::string &scope,
                          const std::string &name, std::string &group)
    {
        const auto found = of_.by_name_.find(name);
        if (found == of_.by_name_.end()) {
            group = scope;
            if (!scope.empty())
                return {};
            if (of_.only_group_ == nullptr)
                return "the source does not have the text; --group names a group for it";
            group = of_.only_group_;
            return {};
        }
        std::vector<adopter::held_item> among = found->second;
        keep_used(among, 0);
        // Where the file alone does not tell, the line does, as the catalogs had it.
        if (among.size() > 1)
            keep_used(among, place_at(begin_of(argument(call, call.form->item))).line);
        if (among.size() == 1) {
            group = view_of(among.front().group->name);
            return {};
        }
        std::string names;
        for (const adopter::held_item &one : among)
            names += (names.empty() ? "" : ", ") + std::string(view_of(one.group->name));
        return "the source has the text in several groups: " + names;
    }

    // Leaves those that are used in a file of this name, and in that line unless it is 0, if there
    // are any.
    void keep_used(std::vector<adopter::held_item> &items, std::uint32_t line) const
    {
        std::vector<adopter::held_item> used;
        std::copy_if(items.begin(), items.end(), std::back_inserter(used),
                     [&](const adopter::held_item &one) { return is_used_here(one.item, line); });
        if (!used.empty())
            items = std::move(used);
    }

    // Whether one of the item's places, "00140:src/note.c", is there.
    bool is_used_here(const item_t *item, std::uint32_t line) const
    {
        for (const char *use : each<const char>(item->used_in)) {
            const char *colon = use == nullptr ? nullptr : std::strchr(use, ':');
            if (colon != nullptr && file_of_path(colon + 1) == file_of_path(path_) &&
                (line == 0 || std::strtoul(use, nullptr, 10) == line))
                return true;
        }
        return false;
    }

    // What stands in place of the word.
    std::string target_of(const foreign_call &call, const read_argument &item) const
    {
        if (call.form->plural != 0)
            return "lang_count";
        if (call.form->is_mark)
            return "lang_dummy";
        if (of_.how_.from == call_dialect::gettext && is_format(item.text))
            return "lang_text";
        return item.pieces == 1 ? "lang_get_string" : "lang_get";
    }

    std::string replace(const foreign_call &call, const read_argument &item,
                        const std::string &name, const read_argument &context,
                        const std::string &group)
    {
        const std::string target = target_of(call, item);
        const bool is_described = target == "lang_dummy" || target == "lang_get";
        // That is what the check reads of a group, and of an item behind a description.
        constexpr std::size_t longest = 1000;
        if ((is_described && name.size() > longest) || group.size() > longest)
            return "too long a text for the check";
        if (context.pieces > 1 && target != "lang_text" && target != "lang_count")
            return "its context is in pieces";
        pending_.clear();
        if (std::string why = drop_arguments(call); !why.empty())
            return why;
        const indexed_item *held = of_.items_.find(group.c_str(), name.c_str());
        put_word(call, target, item);
        if (is_described)
            insert(tokens_[call.word + 1].end,
                   code_literal(held == nullptr ? "" : description_of(held->item)) + ", ");
        if (context.pieces == 0 || group != context.text)
            put_group(call, code_literal(group));
        if (call.form->plural != 0)
            join_plural(argument(call, call.form->item), argument(call, call.form->plural));
        edits_.insert(edits_.end(), pending_.begin(), pending_.end());
        first_ = std::min(first_, tokens_[call.first].begin);
        ++out_.turned;
        if (held == nullptr)
            note_lacking(call, group, name);
        return {};
    }

    void note_lacking(const foreign_call &call, const std::string &group, const std::string &name)
    {
        std::string key;
        exchange::append_key(key, group, name);
        note(call, "the source has no item " + key, true);
    }

    // The other library's calls give objects.
    void put_word(const foreign_call &call, const std::string &target, const read_argument &item)
    {
        const bool is_object = of_.how_.from == call_dialect::qt && !call.form->is_mark;
        std::string before = is_object ? "QString::fromUtf8(" : "";
        std::string behind = is_object ? ")" : "";
        if (!item.end.empty()) {
            before = "QString(" + before;
            behind += " + QLatin1String(\"" + item.end + "\"))";
        } else if (is_object && counts_object(call)) {
            before = "[](int n) { return " + before + "lang_plural(";
            behind = ", n)).replace(QLatin1String(\"%n\"), QString::number(n)); }(" +
                     std::string(bytes_of(argument(call, call.form->number))) + ")";
        }
        pending_.push_back({tokens_[call.first].begin, tokens_[call.word].end, before + target});
        if (!item.end.empty()) {
            const std::size_t end = end_of(argument(call, call.form->item)) - 1;
            pending_.push_back({end - item.end.size(), end, ""});
        }
        if (is_object)
            insert(tokens_[call.closing].end, behind);
    }

    std::string_view bytes_of(const foreign_argument &one) const
    {
        return bytes_.substr(begin_of(one), end_of(one) - begin_of(one));
    }

    void insert(std::size_t at, std::string text) { pending_.push_back({at, at, std::move(text)}); }

    // The group takes the place of the context or the domain, or stands before the text.
    void put_group(const foreign_call &call, const std::string &literal)
    {
        const unsigned at = call.form->context != 0 ? call.form->context : call.form->domain;
        if (at == 0)
            return insert(begin_of(argument(call, call.form->item)), literal + ", ");
        pending_.push_back({begin_of(argument(call, at)), end_of(argument(call, at)), literal});
    }

    // Takes out what a request does not have: a domain before a context, and what stands behind the
    // text, its form and its number.
    std::string drop_arguments(const foreign_call &call)
    {
        const foreign_form &form = *call.form;
        std::string why;
        if (form.domain != 0 && form.context != 0)
            why = drop(argument(call, form.domain), begin_of(argument(call, form.domain)),
                       begin_of(argument(call, form.context)));
        const unsigned kept = std::max<unsigned>({form.item, form.plural != 0 ? form.number : 0U});
        for (unsigned at = kept + 1; why.empty() && at <= call.arguments.size(); ++at)
            why = counts_object(call) && at == form.number
                      ? move_number(call)
                      : drop(argument(call, at), end_of(argument(call, at - 1)),
                             end_of(argument(call, at)));
        if (why.empty() && form.domain != 0 && form.context == 0)
            why = drop_obstacle(argument(call, form.domain));
        return why;
    }

    std::string drop_obstacle(const foreign_argument &one) const
    {
        const bool is_literal = read(one).why.empty();
        return is_literal || one.last - one.first == 1
                   ? ""
                   : "an argument that would go is more than a word";
    }

    std::string drop(const foreign_argument &one, std::size_t begin, std::size_t end)
    {
        if (std::string why = drop_obstacle(one); !why.empty())
            return why;
        return cut(one, begin, end);
    }

    // Line ends stay, so that every line behind them has its number.
    std::string cut(const foreign_argument &one, std::size_t begin, std::size_t end)
    {
        std::string kept;
        for (const char c : bytes_.substr(begin, end - begin))
            if (c == '\n' || c == '\r')
                kept += c;
        if (has_remark(begin, end) || (!kept.empty() && tokens_[one.first].directive != 0))
            return "a line end or a remark stands where an argument would go";
        pending_.push_back({begin, end, kept});
        return {};
    }

    bool has_remark(std::size_t begin, std::size_t end) const
    {
        auto at = std::lower_bound(
            tokens_.begin(), tokens_.end(), begin,
            [](const code_token &one, std::size_t position) { return one.begin < position; });
        while (begin < end) {
            const std::size_t next = at == tokens_.end() ? end : std::min(at->begin, end);
            if (!is_blank(bytes_.substr(begin, next - begin)))
                return true;
            begin = at == tokens_.end() ? end : std::max(at->end, next);
            at += at == tokens_.end() ? 0 : 1;
        }
        return false;
    }

    // The number moves behind the call; a call within it that is turned, or has been, would move
    // too, so the move is refused.
    std::string move_number(const foreign_call &call)
    {
        const foreign_argument &number = argument(call, call.form->number);
        for (std::size_t at = number.first; at < number.last; ++at)
            if (is_foreign_word(token_text(at), of_.how_.from) ||
                token_text(at).starts_with("lang_"))
                return "its number asks for a text";
        if (bytes_of(number).find('\n') != std::string_view::npos)
            return "a line end or a remark stands where an argument would go";
        return cut(number, end_of(argument(call, call.form->number - 1U)), end_of(number));
    }

    // "one", "many" becomes "one|many"; with more than blanks between them, "one" "|" "many".
    void join_plural(const foreign_argument &one, const foreign_argument &many)
    {
        const std::size_t end = end_of(one);
        const std::size_t begin = begin_of(many);
        const std::string_view between = bytes_.substr(end, begin - end);
        const std::size_t comma = tokens_[one.last].begin;
        if (between.find_first_not_of(", \t") == between.npos)
            pending_.push_back({end - 1, begin + 1, "|"});
        else
            pending_.push_back({comma, comma + 1, " \"|\""});
    }

    void write()
    {
        std::stable_sort(edits_.begin(), edits_.end(),
                         [](const byte_edit &a, const byte_edit &b) { return a.begin < b.begin; });
        const include_place added = place_of_include(bytes_, tokens_, first_);
        std::size_t done = 0;
        const auto copy_to = [&](std::size_t position) {
            out_.text.append(bytes_.substr(done, position - done));
            done = position;
        };
        if (added.is_wanted) {
            copy_to(added.position);
            out_.added_line =
                1 + static_cast<std::size_t>(std::count(out_.text.begin(), out_.text.end(), '\n'));
            out_.text += added.line;
        }
        for (const byte_edit &one : edits_) {
            copy_to(one.begin);
            out_.text += one.text;
            done = one.end;
        }
        copy_to(bytes_.size());
    }

    adopter &of_;
    const std::string &path_;
    std::string_view bytes_;
    std::vector<code_token> tokens_;
    adopted_code out_;
    std::vector<byte_edit> edits_;
    std::vector<byte_edit> pending_;             // of the call at hand
    std::size_t first_ = std::string_view::npos; // of what is turned
    std::vector<std::size_t> line_starts_;       // once one is asked for
};

adopter::adopter(LangSource *source, adopt_how how) : how_(std::move(how)), items_(source)
{
    for (const edit_t *group : each<edit_t>(source->groups))
        for (const item_t *item : each<item_t>(group->items))
            by_name_[view_of(item->name)].push_back({group, item});
    if (source->groups != nullptr && source->groups->next == nullptr)
        only_group_ = or_empty(static_cast<const edit_t *>(source->groups->data)->name);
}

adopted_code adopter::take(const std::string &path, std::string_view bytes)
{
    return code_adopter(*this, path, bytes).run();
}

} // namespace zel::kit
