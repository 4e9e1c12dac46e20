#include "source/picture-index.h"

#include "source/fields.h"
#include "support/cut.h"
#include "support/file-call.h"
#include "support/file_mem.h"
#include "support/string-copy.h"

#include <sys/stat.h>

namespace zel {

pictured_texts read_picture_index(const std::string &folder)
{
    const std::string path = folder + "/" + std::string(picture_index_name);
    pictured_texts out;
    struct stat status {};
    char *data = nullptr;
    std::int64_t size = 0;
    // A pipe of that name would never end.
    if (zel_stat(path.c_str(), &status) != 0 || !S_ISREG(status.st_mode) ||
        read_whole(path.c_str(), data, size) != GOOD)
        return out;
    const string_guard owner(data);
    std::string_view rest(data, static_cast<std::size_t>(size));
    while (!rest.empty()) {
        std::vector<std::string> fields = fields_of(cut_at(rest, '\n'));
        if (fields[0].empty() || fields[0].find('/') != std::string::npos)
            continue;
        if (fields.size() == 1)
            out[fields[0]];
        else if (fields.size() == 3)
            out[fields[0]].emplace(std::move(fields[1]), std::move(fields[2]));
    }
    return out;
}

std::string picture_index_text(const pictured_texts &pictures)
{
    std::string out;
    for (const auto &[picture, texts] : pictures) {
        append_field(out, picture);
        out += '\n';
        for (const text_key &text : texts) {
            for (const std::string *field : {&picture, &text.first, &text.second}) {
                append_field(out, *field);
                out += field == &text.second ? '\n' : '\t';
            }
        }
    }
    return out;
}

std::map<text_key, std::string> pictures_by_text(const pictured_texts &pictures)
{
    std::map<text_key, std::string> out;
    for (const auto &[picture, texts] : pictures)
        for (const text_key &text : texts) {
            std::string &best = out.try_emplace(text, picture).first->second;
            if (texts.size() < pictures.at(best).size())
                best = picture;
        }
    return out;
}

} // namespace zel
