// Where the parts of a slider go inside its bounds: the value readout, the
// track (its centre line from position 0 to position 1), the knob, the tick
// marks and the cue texts, for both orientations and the four control
// styles. Pure arithmetic in whole points, so that tracks, ticks and knobs
// land on device pixels at scale 1 and 2.
//
// A value type; copy freely. Any thread.
#pragma once

#include "model/ZelParameter.h"
#include "toolkit/foundation/Geometry.h"

ZEL_NAMESPACE_BEGIN

// The measures of one control style (vertical orientation: widths are
// across the track, lengths along it).
struct ZelSliderStyleMetrics {
  double trackWidth = 4;
  double knobWidth = 20, knobLength = 10;
  double knobRadius = 2.5;
  // The focus border's rounding around the knob (ZelFloatControl's rule:
  // below 1 a fraction of the height, from 1 on points).
  double focusRounding = 5;
  static ZelSliderStyleMetrics forStyle(ZelControlStyle style);
};

struct ZelSliderGeometry {
  bool horizontal = false;
  ZelSliderStyleMetrics metrics;
  CGRect bounds;
  CGRect readout;     // the value text's box
  CGPoint start;      // the track's centre line at position 0 ...
  CGPoint end;        // ... and at position 1
  // Tick marks start this far from the centre line, on both sides.
  double tickInner = 6;
  double majorTickLength = 5, minorTickLength = 3;
  // Cue texts end (vertical: right-aligned) or hang (horizontal: centred
  // below) this far from the centre line; 0 when there is no room for them.
  double cueOffset = 0;

  static ZelSliderGeometry make(CGRect bounds, bool horizontal, ZelControlStyle style);

  double trackLength() const;
  // The point of the centre line at `position` (0 ... 1, not clamped).
  CGPoint pointAt(double position) const;
  // The coordinate of `point` along the track's axis.
  double alongAxis(CGPoint point) const { return horizontal ? point.x : point.y; }
  // The whole track, as drawn (rounded ends included).
  CGRect trackRect() const;
  // The part of the track from position `from` to `to` (either order).
  CGRect trackSegment(double from, double to) const;
  // The knob at `position`, its centre on the centre line.
  CGRect knobRect(double position) const;
  // A tick mark of `length` at `position` on one side (+1 right/above,
  // -1 left/below), one point thick.
  CGRect tickRect(double position, double length, int side) const;
};

// The position (0 ... 1) of `value` on a slider of `parameter`: its
// percentage, clamped; 0 for a value the mapping cannot place (a
// logarithmic parameter at or below 0).
double ZelSliderPosition(const ZelParameter& parameter, float value);

ZEL_NAMESPACE_END
