// OdNonCopyable: base of what is neither copied nor moved.
#pragma once

/// For scopes, which undo in their destructor what they began, and for objects that others hold
/// pointers to.
class OdNonCopyable {
 public:
  OdNonCopyable(const OdNonCopyable&) = delete;
  OdNonCopyable& operator=(const OdNonCopyable&) = delete;

 protected:
  OdNonCopyable() = default;
  ~OdNonCopyable() = default;
};
