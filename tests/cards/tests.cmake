corvane_test(cards/tst_Icon LINK corvane::theme corvane::processes)
corvane_test(cards/tst_PixelGrid LINK corvane::theme)
