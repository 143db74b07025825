corvane_test(drivers/tst_GPUFiles SYSTEM linux)
corvane_test(drivers/tst_APUMetrics)
corvane_test(drivers/tst_PCINames)
