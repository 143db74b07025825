corvane_test(drivers/tst_GPUFiles SYSTEM linux)
