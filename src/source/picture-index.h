#pragma once

// Which picture shows a text. Pictures lie in the folder ScreenShots beside a source: GROUP.jpg
// shows a group, and what the index names shows texts. The index is the file "texts.index" there,
// which lang-kit shots writes. Each line holds fields (source/fields.h): PICTURE alone for a
// picture of the index, and PICTURE, GROUP, ITEM for each text in it.

#include <map>
#include <set>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

namespace zel {

inline constexpr std::string_view picture_folder = "ScreenShots";
inline constexpr std::string_view picture_index_name = "texts.index";

using text_key = std::pair<std::string, std::string>; // group and item

// The texts of each picture, whose name has no folder.
using pictured_texts = std::map<std::string, std::set<text_key>>;

// Reads the index in a folder of pictures; empty without one. Lines that are none, and names that
// lead to another folder, are passed over.
pictured_texts read_picture_index(const std::string &folder);

std::string picture_index_text(const pictured_texts &pictures);

// The picture of each text; where several show it, the one with the fewest texts, and of these the
// first by its name.
std::map<text_key, std::string> pictures_by_text(const pictured_texts &pictures);

} // namespace zel
