#pragma once

// In a text that ends with a sign, as a question does, the toolkit moves a label's caret by words
// to one place behind the end, reads there and complains whenever the label is drawn.

namespace zel {

// From now on the caret stays in the text of every label that can be selected. A second call does
// nothing.
void keep_carets_in_labels();

} // namespace zel
