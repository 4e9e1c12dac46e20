#include "kit/support/uncoded-texts.h"

#include "checker/code-token.h"
#include "exchange/xml-read.h"
#include "kit/support/output.h"

#include <vector>

namespace zel::kit {

namespace {

// Counts what is to be translated of a form.
class form_reader final : public exchange::xml_walker {
public:
    std::size_t texts = 0;

private:
    bool open(std::string_view name) override
    {
        is_text_ = name == "string" && attribute("notr") != "true";
        return true;
    }
    bool close() override
    {
        is_text_ = false;
        return true;
    }
    bool add(std::string_view text) override
    {
        // A text may come in pieces.
        texts += is_text_ && !text.empty() ? 1 : 0;
        is_text_ = is_text_ && text.empty();
        return true;
    }

    bool is_text_ = false;
};

std::size_t calls_of_page(std::string_view bytes)
{
    const std::vector<code_token> tokens = code_tokens(bytes);
    const auto text = [&](std::size_t at) {
        return bytes.substr(tokens[at].begin, tokens[at].end - tokens[at].begin);
    };
    std::size_t count = 0;
    for (std::size_t at = 0; at + 1 < tokens.size(); ++at)
        count += text(at + 1) == "(" &&
                         (text(at) == "qsTr" || text(at) == "qsTranslate" || text(at) == "qsTrId")
                     ? 1
                     : 0;
    return count;
}

} // namespace

bool has_uncoded_texts(std::string_view name)
{
    return name.ends_with(".ui") || name.ends_with(".qml");
}

uncoded_texts find_uncoded_texts(std::string_view name, std::string_view bytes)
{
    uncoded_texts out;
    if (name.ends_with(".qml")) {
        out.count = calls_of_page(bytes);
        out.why = counted(out.count, "call") + " of a script";
        return out;
    }
    form_reader reader;
    out.wrong = reader.walk(bytes, "ui", "ui");
    out.count = reader.texts;
    out.why = counted(out.count, "text") + " of a form, for which the code asks that is made of it";
    return out;
}

} // namespace zel::kit
