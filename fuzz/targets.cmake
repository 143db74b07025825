corvane_fuzz(ChannelTotals LINK corvane::telemetry)
corvane_fuzz(FrequencyTables LINK corvane::telemetry)
corvane_fuzz(KernelText LINK corvane::platform)
corvane_fuzz(SensorNames LINK corvane::telemetry)
