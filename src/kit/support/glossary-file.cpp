#include "kit/support/glossary-file.h"

#include "kit/support/sources.h"

#include <cerrno>
#include <cstdio>
#include <cstring>
#include <sys/stat.h>

namespace zel::kit {

bool glossary_files::find(const std::string &path, const LangSource *source,
                          std::shared_ptr<const lint::glossary> &out)
{
    out = nullptr;
    const std::string file = lint::glossary_path(path);
    if (source == nullptr || source->default_lang == nullptr || file.empty())
        return true;
    struct stat status {};
    if (stat(file.c_str(), &status) != 0) {
        if (errno == ENOENT)
            return true;
        std::fprintf(stderr, "lang-kit: %s: %s\n", file.c_str(), std::strerror(errno));
        return false;
    }
    if (file != path_ || reference_ != source->default_lang) {
        path_ = file;
        reference_ = source->default_lang;
        last_ = nullptr;
        const source_guard list = read(file);
        if (list == nullptr)
            return false;
        last_ = std::make_shared<const lint::glossary>(*list, source->default_lang);
    }
    out = last_;
    return true;
}

} // namespace zel::kit
