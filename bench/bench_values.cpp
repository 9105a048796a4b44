// Cost of the value operations that run on every drag event and host change:
// position to value on a logarithmic frequency and a linear percentage, and
// the display text of a value.
#include <benchmark/benchmark.h>

#include <string>
#include <vector>

#include "model/ZelParameter.h"

using namespace zel;

namespace {

ZelParameter MakeParameter(bool hertz) {
  ZelPlist::Dictionary d = {{"minValue", ZelPlist::real(hertz ? 20 : 0)},
                            {"maxValue", ZelPlist::real(hertz ? 20000 : 100)},
                            {"granularity", ZelPlist::real(hertz ? 1 : 0.1)},
                            {"formatString", ZelPlist::string(hertz ? "%0.0f" : "%0.1f")}};
  if (hertz) {
    d["unit"] = ZelPlist::string("Hertz");
    d["logarithmic"] = ZelPlist::boolean(true);
  }
  return ZelParameter(ZelPlist::dictionary(std::move(d)));
}

// Positions sweep the whole range so every branch of the steps is taken.
void Mapping(benchmark::State& state, bool hertz) {
  ZelParameter p = MakeParameter(hertz);
  float position = 0;
  for (auto _ : state) {
    benchmark::DoNotOptimize(p.normalizedFloatValueFromPercent(position, ZelGranularityNormal));
    position = position < 1.0f ? position + 0.0007f : 0.0f;
  }
}

// Values are taken across the whole range beforehand so that only the text
// is measured.
void Text(benchmark::State& state, bool hertz) {
  ZelParameter p = MakeParameter(hertz);
  std::vector<float> values(1024);
  for (std::size_t i = 0; i < values.size(); ++i) {
    values[i] = p.normalizedFloatValueFromPercent(float(i) / float(values.size() - 1), ZelGranularityNormal);
  }
  std::string text, suffix;
  std::size_t i = 0;
  for (auto _ : state) {
    p.valueString(&text, &suffix, values[i]);
    benchmark::DoNotOptimize(text.data());
    i = (i + 1) & (values.size() - 1);
  }
}

void BM_ValueFromPositionLogHertz(benchmark::State& s) { Mapping(s, true); }
void BM_ValueFromPositionLinearPercent(benchmark::State& s) { Mapping(s, false); }
void BM_ValueTextLogHertz(benchmark::State& s) { Text(s, true); }
void BM_ValueTextLinearPercent(benchmark::State& s) { Text(s, false); }

}  // namespace

BENCHMARK(BM_ValueFromPositionLogHertz);
BENCHMARK(BM_ValueFromPositionLinearPercent);
BENCHMARK(BM_ValueTextLogHertz);
BENCHMARK(BM_ValueTextLinearPercent);
