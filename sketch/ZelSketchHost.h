// What a parameter sketch needs of the container it sits in (the editor's
// power box): the logo stamp layer it may degrade, and the backing scale of
// the screen the editor is on.
//
// Ownership: the sketch holds its host as a non-owning pointer; the host
// outlives the sketch (the sketch is its subview) or clears it with
// setPowerbox(nullptr). Threading: main thread only.
#pragma once

#include "toolkit/foundation/ZelNamespace.h"

ZEL_NAMESPACE_BEGIN

class ZelLayer;

class ZelSketchHost {
 public:
  // The logo stamp's layer, or nullptr when the host has none. Not owned by
  // the caller; valid while the host lives.
  virtual ZelLayer* logoStampLayer() const = 0;
  // Pixels per point of the screen the host is shown on; 0 (the default)
  // lets the sketch use its own window's scale.
  virtual double sketchBackingScale() const { return 0; }

 protected:
  ~ZelSketchHost() = default;
};

ZEL_NAMESPACE_END
