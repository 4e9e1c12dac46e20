#include "exchange/plural-header.h"
#include "exchange/ts.h"
#include "langlib/plural-rule.h"
#include "support/cut.h"

namespace zel::exchange {

namespace {

constexpr std::string_view one_form = "nplurals=1; plural=0;";
constexpr std::string_view not_one = "nplurals=2; plural=(n != 1);";
constexpr std::string_view above_one = "nplurals=2; plural=(n > 1);";

// Languages in which the toolkit counts otherwise than lang_plural does.
constexpr struct {
    std::string_view codes;
    std::string_view field;
} other_ways[] = {
    {"bi fa fj gn hu na om tr tt za", one_form},
    {"am as bn gu he hi km kn kw ln lo mg nso pa pt si to wo zu", not_one},
    {"br fil pt_BR", above_one},
    {"dv ga gv ik iu mi sa se sm", "nplurals=3; plural=(n==1 ? 0 : n==2 ? 1 : 2);"},
    {"lv", "nplurals=3; plural=(n%10==1 && n%100!=11 ? 0 : n!=0 ? 1 : 2);"},
    {"mk", "nplurals=3; plural=(n%10==1 ? 0 : n%10==2 ? 1 : 2);"},
    {"ro", "nplurals=3; plural=(n==1 ? 0 : n==0 || (n%100>=1 && n%100<=19) ? 1 : 2);"},
    {"mt", "nplurals=4; plural=(n==1 ? 0 : n==0 || (n%100>=1 && n%100<=10) ? 1 : "
           "n%100>=11 && n%100<=19 ? 2 : 3);"},
    {"cy", "nplurals=5; plural=(n==0 ? 0 : n==1 ? 1 : n>=2 && n<=5 ? 2 : n==6 ? 3 : 4);"},
};

std::string_view find_other_way(std::string_view code)
{
    for (const auto &row : other_ways)
        for (std::string_view rest = row.codes; !rest.empty();)
            if (cut_at(rest, ' ') == code)
                return row.field;
    return {};
}

} // namespace

std::string ts_plural_field(std::string_view code)
{
    const std::string_view language = code.substr(0, code.find_first_of("_@-."));
    std::string_view field = find_other_way(code);
    if (field.empty() && code != "pt_PT")
        field = find_other_way(language);
    if (!field.empty())
        return std::string(field);
    return has_plural_rule(code) ? header_of_rule(plural_rule_of(code), false) : std::string();
}

} // namespace zel::exchange
