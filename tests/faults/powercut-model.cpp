#include "powercut-model.h"

#include <algorithm>
#include <set>

namespace zel_test {

namespace {

// The lengths at which a piece of that size is cut: its ends and that many between.
std::set<std::size_t> cuts(std::size_t size, std::size_t many)
{
    std::set<std::size_t> all = {0, 1, size == 0 ? 0 : size - 1, size};
    const std::size_t step = std::max(size / many, std::size_t{1});
    for (std::size_t at = step; at < size; at += step)
        all.insert(at);
    return all;
}

} // namespace

std::string disk::plain(const std::string &path)
{
    return path.starts_with("./") ? path.substr(2) : path;
}

std::string disk::folder_of(const std::string &path)
{
    const std::size_t slash = path.rfind('/');
    return slash == path.npos ? "." : path.substr(0, slash);
}

void disk::apply(std::string &text, const change &one, std::size_t bytes)
{
    const auto offset = static_cast<std::size_t>(one.offset);
    if (one.is_truncation) {
        text.resize(offset);
        return;
    }
    if (text.size() < offset + bytes)
        text.resize(offset + bytes); // what is between is zeros
    text.replace(offset, bytes, one.data, 0, bytes);
}

void disk::apply(names &to, const name_change &one)
{
    for (const auto &[name, file] : one.set) {
        if (file == no_file)
            to.erase(name);
        else
            to[name] = file;
    }
}

std::string disk::whole(const file &one)
{
    std::string text = one.safe;
    for (const change &next : one.changes)
        apply(text, next, next.data.size());
    return text;
}

// All that a file may hold after a power cut.
std::vector<std::string> disk::contents(const file &one) const
{
    std::set<std::string> all = {one.safe};
    std::string so_far = one.safe;
    for (const change &next : one.changes) {
        for (const std::size_t bytes : cuts(next.data.size(), cuts_)) {
            std::string cut = so_far;
            apply(cut, next, bytes);
            all.insert(cut);
            std::string alone = one.safe; // what came before it is not there
            apply(alone, next, bytes);
            all.insert(alone);
        }
        apply(so_far, next, next.data.size());
        all.insert(std::string(so_far.size(), '\0')); // the length is there, and nothing else
    }
    return {all.begin(), all.end()};
}

void disk::add_file(const std::string &path, disk_key key, std::string text)
{
    by_key_[key] = files_.size();
    safe_names_[path] = names_[path] = files_.size();
    files_.push_back({std::move(text), {}});
}

void disk::change_names(const std::string &path,
                        std::vector<std::pair<std::string, std::size_t>> set)
{
    name_changes_.push_back({folder_of(path), std::move(set)});
    apply(names_, name_changes_.back());
}

void disk::sync(disk_key key)
{
    if (const auto folder = folders_.find(key); folder != folders_.end()) {
        std::erase_if(name_changes_, [&](const name_change &one) {
            if (one.folder != folder->second)
                return false;
            apply(safe_names_, one);
            return true;
        });
        return;
    }
    if (const auto found = by_key_.find(key); found != by_key_.end()) {
        file &one = files_[found->second];
        one.safe = whole(one);
        one.changes.clear();
    }
}

void disk::take(const call_record &record, const std::string &data)
{
    const disk_key key = {record.device, record.number};
    const std::string first = plain(data.c_str());
    const std::string second =
        first.size() + 1 < data.size() ? plain(data.substr(data.find('\0') + 1).c_str()) : "";
    const auto known = by_key_.find(key);
    switch (record.what) {
    case call_record::create:
        by_key_[key] = files_.size();
        files_.emplace_back();
        change_names(first, {{first, by_key_[key]}});
        break;
    case call_record::write:
        if (known != by_key_.end())
            files_[known->second].changes.push_back({record.offset, data, false});
        break;
    case call_record::truncate:
        if (known != by_key_.end())
            files_[known->second].changes.push_back({record.offset, "", true});
        break;
    case call_record::sync:
        sync(key);
        break;
    case call_record::link:
        change_names(second, {{second, names_.at(first)}});
        break;
    case call_record::rename:
        change_names(second, {{first, no_file}, {second, names_.at(first)}});
        break;
    case call_record::unlink:
        change_names(first, {{first, no_file}});
        break;
    }
}

// The names with any of their changes made, in order.
std::vector<disk::names> disk::namespaces() const
{
    constexpr std::size_t most = 12;
    const std::size_t free = std::min(name_changes_.size(), most); // the first ones; others follow
    std::set<names> all;
    for (std::size_t mask = 0; mask < std::size_t{1} << free; ++mask) {
        names some = safe_names_;
        for (std::size_t at = 0; at < name_changes_.size(); ++at)
            if (at >= free || (mask >> at & 1) != 0)
                apply(some, name_changes_[at]);
        all.insert(some);
    }
    return {all.begin(), all.end()};
}

void disk::each_state(const std::function<void(const disk_state &)> &hear) const
{
    for (const names &some : namespaces()) {
        disk_state state;
        std::set<std::size_t> open;
        for (const auto &[name, number] : some) {
            state[name] = whole(files_[number]);
            if (!files_[number].changes.empty())
                open.insert(number);
        }
        hear(state);
        // One file after the other in all ways, the rest complete, and then not there at all.
        for (const bool rest : {true, false})
            for (const std::size_t varied : open)
                for (const std::string &text : contents(files_[varied])) {
                    disk_state other = state;
                    for (const auto &[name, number] : some)
                        if (number == varied)
                            other[name] = text;
                        else if (!rest)
                            other[name] = files_[number].safe;
                    hear(other);
                }
    }
}

disk_state disk::now() const
{
    disk_state state;
    for (const auto &[name, number] : names_)
        state[name] = whole(files_[number]);
    return state;
}

} // namespace zel_test
