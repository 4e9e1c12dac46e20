#pragma once

// The icons in front of the table's rows, 12 x 12 pixels.

// The current row: a solid blue square.
constexpr const char *xpm_active[] = {"12 12 2 1",    ". c None",     "b c #0000ff",  //
                                      "bbbbbbbbbbbb", "bbbbbbbbbbbb", "bbbbbbbbbbbb", //
                                      "bbbbbbbbbbbb", "bbbbbbbbbbbb", "bbbbbbbbbbbb", //
                                      "bbbbbbbbbbbb", "bbbbbbbbbbbb", "bbbbbbbbbbbb", //
                                      "bbbbbbbbbbbb", "bbbbbbbbbbbb", "bbbbbbbbbbbb"};

// The others: nothing, of the same size.
constexpr const char *xpm_passive[] = {"12 12 2 1",    ". c None",     "b c #0000ff",  //
                                       "............", "............", "............", //
                                       "............", "............", "............", //
                                       "............", "............", "............", //
                                       "............", "............", "............"};
