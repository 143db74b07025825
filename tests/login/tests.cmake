corvane_test(login/tst_LaunchAtLoginManager)
corvane_test(login/tst_DesktopEntry)
corvane_test(login/tst_Autostart SYSTEM linux simulated-mac)
