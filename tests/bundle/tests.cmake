corvane_test(bundle/tst_AppIcon LINK corvane_icon)
