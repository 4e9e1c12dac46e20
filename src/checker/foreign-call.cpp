#include "checker/foreign-call.h"

#include "checker/class-scope.h"

#include <algorithm>
#include <iterator>

namespace zel {

namespace {

// word, item, plural, number, context, domain, comment, least, most, is_mark
constexpr foreign_form gettext_forms[] = {
    {"_", 1, 0, 0, 0, 0, 0, 1, 1, false},
    {"gettext", 1, 0, 0, 0, 0, 0, 1, 1, false},
    {"N_", 1, 0, 0, 0, 0, 0, 1, 1, true},
    {"gettext_noop", 1, 0, 0, 0, 0, 0, 1, 1, true},
    {"ngettext", 1, 2, 3, 0, 0, 0, 3, 3, false},
    {"pgettext", 2, 0, 0, 1, 0, 0, 2, 2, false},
    {"C_", 2, 0, 0, 1, 0, 0, 2, 2, false},
    {"NC_", 2, 0, 0, 1, 0, 0, 2, 2, true},
    {"npgettext", 2, 3, 4, 1, 0, 0, 4, 4, false},
    {"dgettext", 2, 0, 0, 0, 1, 0, 2, 2, false},
    {"g_dgettext", 2, 0, 0, 0, 1, 0, 2, 2, false},
    {"dcgettext", 2, 0, 0, 0, 1, 0, 3, 3, false},
    {"dngettext", 2, 3, 4, 0, 1, 0, 4, 4, false},
    {"g_dngettext", 2, 3, 4, 0, 1, 0, 4, 4, false},
    {"dcngettext", 2, 3, 4, 0, 1, 0, 5, 5, false},
    {"dpgettext", 3, 0, 0, 2, 1, 0, 3, 3, false},
    {"g_dpgettext2", 3, 0, 0, 2, 1, 0, 3, 3, false},
    {"dnpgettext", 3, 4, 5, 2, 1, 0, 5, 5, false},
};

constexpr foreign_form qt_forms[] = {
    {"tr", 1, 0, 3, 0, 0, 2, 1, 3, false},
    {"trUtf8", 1, 0, 3, 0, 0, 2, 1, 3, false},
    {"translate", 2, 0, 4, 1, 0, 3, 2, 4, false},
    {"qtTrId", 1, 0, 2, 0, 0, 0, 1, 2, false},
    {"QT_TR_NOOP", 1, 0, 0, 0, 0, 0, 1, 1, true},
    {"QT_TR_NOOP_UTF8", 1, 0, 0, 0, 0, 0, 1, 1, true},
    {"QT_TR_N_NOOP", 1, 0, 0, 0, 0, 0, 1, 1, true},
    {"QT_TRANSLATE_NOOP", 2, 0, 0, 1, 0, 0, 2, 2, true},
    {"QT_TRANSLATE_NOOP_UTF8", 2, 0, 0, 1, 0, 0, 2, 2, true},
    {"QT_TRANSLATE_N_NOOP", 2, 0, 0, 1, 0, 0, 2, 2, true},
    {"QT_TRANSLATE_NOOP3", 2, 0, 0, 1, 0, 3, 3, 3, true},
    {"QT_TRID_NOOP", 1, 0, 0, 0, 0, 0, 1, 1, true},
    {"QT_TRID_N_NOOP", 1, 0, 0, 0, 0, 0, 1, 1, true},
};

// Texts that have an id and no class.
constexpr std::string_view id_group = "messages";
constexpr std::string_view id_words[] = {"qtTrId", "QT_TRID_NOOP", "QT_TRID_N_NOOP"};

class call_finder {
public:
    call_finder(std::string_view bytes, const std::vector<code_token> &tokens, call_dialect of)
        : bytes_(bytes), tokens_(tokens), forms_(foreign_forms(of)), of_(of),
          partner_(tokens.size(), none)
    {
        pair_brackets();
    }

    std::vector<foreign_call> find()
    {
        class_scope scope(bytes_);
        for (std::size_t at = 0; at < tokens_.size(); ++at) {
            if (of_ == call_dialect::qt && tokens_[at].directive == 0)
                scope.take(tokens_[at]);
            if (const foreign_form *form = form_of(at); form != nullptr && !is_declared(at))
                add(*form, at, scope);
        }
        return std::move(calls_);
    }

private:
    static constexpr std::size_t none = static_cast<std::size_t>(-1);

    std::string_view text_of_token(std::size_t at) const
    {
        return at < tokens_.size()
                   ? bytes_.substr(tokens_[at].begin, tokens_[at].end - tokens_[at].begin)
                   : std::string_view();
    }
    bool is_name(std::size_t at) const
    {
        return at < tokens_.size() && tokens_[at].is == code_token::kind::name;
    }
    // A sign that stands `back` tokens before this one.
    bool has_before(std::size_t at, std::size_t back, std::string_view sign) const
    {
        return at >= back && text_of_token(at - back) == sign;
    }

    // Finds the partner of each opening parenthesis. Those of a directive are matched among
    // themselves, and the ones around it stay open meanwhile.
    void pair_brackets()
    {
        std::vector<std::size_t> open;
        std::vector<std::size_t> of_directive;
        std::uint32_t directive = 0;
        for (std::size_t at = 0; at < tokens_.size(); ++at) {
            if (tokens_[at].is != code_token::kind::sign)
                continue;
            if (tokens_[at].directive != directive)
                of_directive.clear();
            directive = tokens_[at].directive;
            pair_bracket(directive == 0 ? open : of_directive, at);
        }
    }

    void pair_bracket(std::vector<std::size_t> &open, std::size_t at)
    {
        const char sign = bytes_[tokens_[at].begin];
        if (sign == '(' || sign == '[' || sign == '{')
            open.push_back(at);
        // What is open inside a block ends with it, whatever a preprocessor would leave of it.
        while (sign == '}' && !open.empty() && bytes_[tokens_[open.back()].begin] != '{')
            open.pop_back();
        const char wanted = sign == ')' ? '(' : sign == ']' ? '[' : sign == '}' ? '{' : '\0';
        if (open.empty() || wanted == '\0' || bytes_[tokens_[open.back()].begin] != wanted)
            return;
        partner_[open.back()] = at;
        open.pop_back();
    }

    // The form of a word that is called here, or null.
    const foreign_form *form_of(std::size_t at) const
    {
        if (!is_name(at) || text_of_token(at + 1) != "(")
            return nullptr;
        const std::string_view word = text_of_token(at);
        const auto found = std::find_if(forms_.begin(), forms_.end(),
                                        [&](const foreign_form &one) { return one.word == word; });
        if (found == forms_.end())
            return nullptr;
        // Its own definition, "#define _(text)"; the blank that would end the name matters to the
        // compiler alone.
        if (has_before(at, 1, "define") && has_before(at, 2, "#"))
            return nullptr;
        const bool is_member =
            has_before(at, 1, ".") || (has_before(at, 1, ">") && has_before(at, 2, "-"));
        // Another library's function of that name.
        return is_member && of_ == call_dialect::gettext ? nullptr : &*found;
    }

    // "char *gettext(const char *text)": names and these signs alone, the first name not by itself.
    bool is_declared(std::size_t at) const
    {
        const std::size_t closing = partner_[at + 1];
        if (closing == none || closing == at + 2)
            return closing != none;
        constexpr std::string_view marks = "*&,[]";
        for (std::size_t i = at + 2; i < closing; ++i) {
            const std::string_view text = text_of_token(i);
            const bool is_mark = text.size() == 1 && marks.find(text[0]) != marks.npos;
            if (!is_name(i) && !is_mark)
                return false;
        }
        return is_name(at + 2) && (is_name(at + 3) || text_of_token(at + 3) == "*");
    }

    void add(const foreign_form &form, std::size_t at, const class_scope &scope)
    {
        foreign_call call;
        call.form = &form;
        call.word = call.first = at;
        call.closing = partner_[at + 1];
        call.is_open = call.closing == none;
        if (of_ == call_dialect::qt)
            find_object(call, scope);
        else
            call.of_object =
                has_before(at, 1, ":") && has_before(at, 2, ":") && at >= 3 && is_name(at - 3);
        if (!call.is_open)
            read_call_arguments(call);
        if (!is_movement(call))
            calls_.push_back(std::move(call));
    }

    // "painter->translate(1, 2)", of other objects than the application, and without any text.
    bool is_movement(const foreign_call &call) const
    {
        const bool is_bare = call.of_object || call.first == call.word;
        return of_ == call_dialect::qt && is_bare && !call.is_open && call.form->context != 0 &&
               !call.form->is_mark &&
               std::none_of(call.arguments.begin(), call.arguments.end(),
                            [&](const foreign_argument &one) {
                                const code_token::kind kind = tokens_[one.first].is;
                                return kind == code_token::kind::text ||
                                       kind == code_token::kind::other_text;
                            });
    }

    // What stands before the word: "Window::", "this->", or another object.
    void find_object(foreign_call &call, const class_scope &scope) const
    {
        const bool is_id = std::find(std::begin(id_words), std::end(id_words), call.form->word) !=
                           std::end(id_words);
        call.scope = is_id ? std::string(id_group) : scope.name();
        std::size_t &first = call.first;
        std::string named;
        constexpr std::size_t longest = 500;
        while (has_before(first, 1, ":") && has_before(first, 2, ":") && first >= 3 &&
               is_name(first - 3) && named.size() <= longest) {
            first -= 3;
            named.insert(0, std::string(text_of_token(first)) + (named.empty() ? "" : "::"));
        }
        if (!named.empty())
            call.scope = named;
        const bool by_arrow = has_before(first, 1, ">") && has_before(first, 2, "-");
        if (by_arrow && (has_before(first, 3, "this") || has_before(first, 3, "qApp")))
            first -= 3;
        else
            call.of_object = by_arrow || has_before(first, 1, ".");
    }

    void read_call_arguments(foreign_call &call) const
    {
        const std::uint32_t directive = tokens_[call.word].directive;
        std::size_t begin = call.word + 2;
        for (std::size_t at = begin; at <= call.closing; ++at) {
            call.is_split = call.is_split || tokens_[at].directive != directive;
            if (at != call.closing && text_of_token(at) != ",") {
                // Over what stands in brackets of its own, but not into another call's end.
                if (partner_[at] != none && partner_[at] < call.closing)
                    at = partner_[at];
                continue;
            }
            call.arguments.push_back({begin, at});
            begin = at + 1;
        }
    }

    std::string_view bytes_;
    const std::vector<code_token> &tokens_;
    std::span<const foreign_form> forms_;
    call_dialect of_;
    std::vector<std::size_t> partner_; // of an opening bracket
    std::vector<foreign_call> calls_;
};

} // namespace

std::span<const foreign_form> foreign_forms(call_dialect of)
{
    if (of == call_dialect::gettext)
        return gettext_forms;
    return qt_forms;
}

std::vector<foreign_call> foreign_calls(std::string_view bytes,
                                        const std::vector<code_token> &tokens, call_dialect of)
{
    return call_finder(bytes, tokens, of).find();
}

} // namespace zel
