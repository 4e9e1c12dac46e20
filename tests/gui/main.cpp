#include <gtest/gtest.h>
#include <gtk/gtk.h>

#include <cstdio>

// Without a display nothing is tested, and that is a failure; the list of tests needs none.
int main(int argc, char **argv)
{
    testing::InitGoogleTest(&argc, argv);
    if (testing::GTEST_FLAG(list_tests))
        return RUN_ALL_TESTS();
    if (!gtk_init_check(&argc, &argv)) {
        std::fputs("gui_test: no display; run it under tools/with-display\n", stderr);
        return 1;
    }
    return RUN_ALL_TESTS();
}
