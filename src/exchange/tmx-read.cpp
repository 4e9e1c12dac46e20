#include "exchange/carry.h"
#include "exchange/key.h"
#include "exchange/language-code.h"
#include "exchange/tmx.h"
#include "exchange/xml-read.h"
#include "langlib/plural-rule.h"

#include <algorithm>
#include <unordered_map>

#include <glib.h>

namespace zel::exchange {

namespace {

// The code of a language as other files have it: "EN-us" is "en_US".
std::string memory_code(std::string code)
{
    const std::size_t end = std::min(code.find_first_of("-_"), code.size());
    for (std::size_t at = 0; at < end; ++at)
        code[at] = g_ascii_tolower(code[at]);
    // What has two letters is a country; a script has four.
    constexpr std::size_t country = 3;
    for (std::size_t at = end; code.size() - end == country && at < code.size(); ++at)
        code[at] = g_ascii_toupper(code[at]);
    return code_of_xml(code);
}

std::string_view base_of(std::string_view code) { return code.substr(0, code.find('_')); }

class tmx_reader final : public xml_walker {
public:
    explicit tmx_reader(const text_listener &hear) : hear_(hear) {}

    // Gives the last unit out.
    void finish() { tell(); }

private:
    struct variant {
        std::string code;
        std::string text;
    };

    bool open(std::string_view name) override
    {
        path_.emplace_back(name);
        if (path_.size() == 1)
            return name == "tmx" || fail("no TMX");
        // Inside a text there are only tags.
        if (seg_ != 0)
            return true;
        if (name == "header") {
            is_own_ = attribute("creationtool") == "lang-kit";
            source_ = memory_code(attribute("srclang"));
        } else if (name == "tu") {
            open_unit();
        } else if (name == "prop" && in("tu")) {
            const std::string type = attribute("type");
            property_ = type == "x-form" ? &form_ : type == "x-reference" ? &whole_ : nullptr;
        } else if (name == "prop" && in("header") && is_own_) {
            property_ = attribute("type") == "x-language" ? &named_ : nullptr;
        } else if (name == "tuv" && in("tu")) {
            std::string code = attribute("xml:lang");
            variants_.push_back({memory_code(code.empty() ? attribute("lang") : code), {}});
        } else if (name == "seg" && in("tuv") && !variants_.empty()) {
            seg_ = path_.size();
        }
        return true;
    }

    bool close() override
    {
        const std::string name = std::move(path_.back());
        path_.pop_back();
        if (path_.size() < seg_)
            seg_ = 0;
        else if (seg_ == 0 && name == "tu")
            close_unit();
        else if (seg_ == 0 && name == "prop")
            property_ = nullptr;
        return true;
    }

    bool add(std::string_view text) override
    {
        std::string *whole = seg_ != 0 ? &variants_.back().text : property_;
        if (whole == nullptr)
            return true;
        whole->append(text);
        return whole->size() <= largest_text || fail("a text of more than 8 MB");
    }

    // Whether the element that opens stands right in that one.
    bool in(std::string_view name) const
    {
        return path_.size() > 1 && path_[path_.size() - 2] == name;
    }

    void open_unit()
    {
        key_ = is_own_ ? attribute("tuid") : "";
        // A key may have characters that stand for bytes elsewhere.
        uncarry(key_, encoding::any);
        line_ = element_line();
        form_.clear();
        whole_.clear();
        variants_.clear();
    }

    void close_unit()
    {
        const variant *source = source_of_unit();
        for (const variant &one : variants_)
            if (&one != source && (is_own_ || one.code != source->code))
                take(*source, one);
        variants_.clear();
    }

    // What the others translate: in the file's source language, or a variant of it; else the first.
    const variant *source_of_unit() const
    {
        // Languages without a code look the same.
        if (is_own_ && !variants_.empty())
            return variants_.data();
        for (const variant &one : variants_)
            if (one.code == source_)
                return &one;
        for (const variant &one : variants_)
            if (!source_.empty() && base_of(one.code) == base_of(source_))
                return &one;
        return variants_.empty() ? nullptr : variants_.data();
    }

    void take(const variant &source, const variant &one)
    {
        // The forms of a plural follow each other.
        if (!form_.empty() && form_ != "0" && unit_.keyed && pending_key_ == key_ &&
            pending_code_ == one.code) {
            unit_.text.append(1, plural_sign).append(one.text);
            return;
        }
        tell();
        unit_ = {};
        unit_.keyed = split_key(key_, unit_.group, unit_.item);
        if (!unit_.keyed) {
            unit_.group.clear();
            unit_.item.clear();
        }
        unit_.reference = whole_.empty() ? source.text : whole_;
        unit_.text = one.text;
        unit_.line = line_;
        unit_.language = language_at(one.code);
        pending_key_ = key_;
        pending_code_ = one.code;
        is_pending_ = true;
    }

    std::uint32_t language_at(const std::string &code)
    {
        const auto next = static_cast<std::uint32_t>(file_.languages.size());
        const auto [found, added] = languages_.emplace(code, next);
        if (added) {
            file_.languages.push_back({{}, code});
            read_name(named_, file_.languages.back().name);
        }
        return found->second;
    }

    void tell()
    {
        if (is_pending_)
            hear_(file_, unit_);
        is_pending_ = false;
    }

    const text_listener &hear_;
    file_texts file_;
    std::unordered_map<std::string, std::uint32_t> languages_; // positions of codes
    bool is_own_ = false;
    std::string source_; // code
    std::string named_;  // the language as a source names it, in files of lang-kit
    std::vector<std::string> path_;
    std::size_t seg_ = 0;             // its depth while one is open
    std::string *property_ = nullptr; // that is read

    // Of the open unit.
    std::string key_;
    std::string form_;
    std::string whole_; // the reference of all forms
    std::uint32_t line_ = 0;
    std::vector<variant> variants_;

    text_unit unit_; // that may get another form
    bool is_pending_ = false;
    std::string pending_key_;
    std::string pending_code_;
};

// Puts blanks in the place of the one document type that many tools write.
std::string without_type(std::string_view bytes)
{
    constexpr std::string_view types[] = {"<!DOCTYPE tmx SYSTEM \"tmx14.dtd\">",
                                          "<!DOCTYPE tmx SYSTEM \"tmx13.dtd\">",
                                          "<!DOCTYPE tmx SYSTEM \"tmx11.dtd\">"};
    std::string out(bytes);
    const std::size_t at = out.find("<!DOCTYPE");
    // Behind the first element it would be a text's.
    if (at == out.npos || at > out.find("<tmx"))
        return out;
    for (const std::string_view type : types)
        if (std::string_view(out).substr(at).starts_with(type))
            out.replace(at, type.size(), type.size(), ' ');
    return out;
}

} // namespace

fault read_tmx(std::string_view bytes, encoding, const text_listener &hear)
{
    tmx_reader reader(hear);
    fault wrong = reader.walk(without_type(bytes), "TMX");
    if (!wrong)
        reader.finish();
    return wrong;
}

} // namespace zel::exchange
