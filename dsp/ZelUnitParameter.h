// One parameter of a product's unit as its generated parameter table lists
// it (products/<slug>: dsp/<ClassPrefix>ParameterTable.h, written from the
// description at build time): the vocabulary the unit, the host bridge and
// the plug-in adapters share. Plain constant data.
#pragma once

#include <cstdint>

#include "dsp/ZelDspNamespace.h"

ZEL_DSP_NAMESPACE_BEGIN

// How a value travels between the unit and the editor.
enum class ZelParameterKind : std::uint8_t { Switch, Plain, Frequency, WholeNumber };

struct ZelUnitParameter {
  int pid;
  const char* codeName;
  const char* name;
  const char* unit;  // the description's unit word
  float minimum, maximum, initial;
  ZelParameterKind kind;
  bool logarithmic;
  const char* const* stringValues;  // names of the values minimum, minimum + 1, ...
  int stringValueCount;
};

// Oversampling factors of a high-quality mode, by sample rate.
struct ZelHQMult {
  double sampleRate;
  int factor;
};

ZEL_DSP_NAMESPACE_END
