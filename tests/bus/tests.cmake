corvane_test(bus/tst_BusCall SYSTEM linux simulated-mac)
corvane_test(bus/tst_SessionBus SYSTEM linux simulated-mac)
corvane_test(bus/tst_BusProbe SYSTEM linux simulated-mac)
corvane_test(bus/tst_BusConnection SYSTEM linux simulated-mac THREADED)
