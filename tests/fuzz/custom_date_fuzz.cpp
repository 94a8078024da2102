#include "fuzz/custom_date_fuzz.h"

#include "fuzz/fuzz_target.h"

int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  quorlo::keepLogQuiet();
  quorlo::fuzzCustomDate(data, size);
  return 0;
}
