// The units library.
//
// The library reads words, with prefixes and plurals, into units of its own; a visitor takes each
// apart into a factor and powers of base units. It has state that it shares between calls, so one
// lock guards all of it. Words that are units are remembered: reading one costs microseconds.
#include "platform/expressions/unit_library.h"

#include <udunits2.h>

#include <algorithm>
#include <array>
#include <cmath>
#include <mutex>
#include <string>
#include <unordered_map>

#include "platform/base/non_copyable.h"
#include "platform/base/string.h"

namespace OdExpression {

namespace {

/// A unit as the visitor takes it apart.
struct Parts {
  const ut_unit* const* bases;  ///< by Dimension::Base, then the radian
  double scale = 1.0;
  std::array<int, Dimension::kBaseCount + 1> powers{};
};

constexpr std::size_t kRadian = Dimension::kBaseCount;
constexpr const char* kBaseNames[] = {"meter",  "kilogram", "second",  "kelvin",
                                      "ampere", "mole",     "candela", "radian"};
static_assert(std::size(kBaseNames) == kRadian + 1);

ut_status addPower(Parts& parts, const ut_unit* base, int power) {
  for (std::size_t i = 0; i <= kRadian; ++i) {
    if (ut_compare(parts.bases[i], base) != 0) continue;
    parts.powers[i] += power;
    return UT_SUCCESS;
  }
  return UT_UNKNOWN;
}

ut_status visitBasic(const ut_unit* unit, void* parts) {
  return addPower(*static_cast<Parts*>(parts), unit, 1);
}

ut_status visitProduct(const ut_unit* /*unit*/, int count, const ut_unit* const* bases,
                       const int* powers, void* parts) {
  for (int i = 0; i < count; ++i) {
    const ut_status status = addPower(*static_cast<Parts*>(parts), bases[i], powers[i]);
    if (status != UT_SUCCESS) return status;
  }
  return UT_SUCCESS;
}

ut_status visitScaled(const ut_unit* unit, double scale, const ut_unit* underlying, double offset,
                      void* parts);

// A unit of time since a moment is no factor, nor is the logarithm of one.
ut_status visitTimestamp(const ut_unit*, const ut_unit*, double, void*) { return UT_MEANINGLESS; }
ut_status visitLogarithmic(const ut_unit*, double, const ut_unit*, void*) { return UT_MEANINGLESS; }

constexpr ut_visitor kVisitor = {visitBasic, visitProduct, visitScaled, visitTimestamp,
                                 visitLogarithmic};

ut_status visitScaled(const ut_unit* /*unit*/, double scale, const ut_unit* underlying,
                      double offset, void* parts) {
  if (offset != 0.0) return UT_MEANINGLESS;
  static_cast<Parts*>(parts)->scale *= scale;
  return ut_accept_visitor(underlying, &kVisitor, parts);
}

/// The scale as the decimal fraction that it was written as: 0.001 is 1 / 1000, so that a litre is
/// a million cubic millimetres without a rounding. Other scales stay over 1.
Unit scaled(double scale) {
  constexpr int kMostPowers = 18;
  Unit unit;
  unit.numerator = scale;
  long double power = 1.0L;
  for (int i = 0; i < kMostPowers; ++i) {
    const long double digits = std::round(static_cast<long double>(scale) * power);
    if (digits < 1e18L && static_cast<double>(digits / power) == scale) {
      unit.numerator = digits;
      unit.denominator = power;
      break;
    }
    power *= 10.0L;
  }
  return unit;
}

std::optional<Unit> unitOf(const Parts& parts) {
  constexpr int kLargestPower = 10;
  Unit unit = scaled(parts.scale);
  bool isQuantity = false;
  for (std::size_t i = 0; i < kRadian; ++i) {
    if (parts.powers[i] == 0) continue;
    if (std::abs(parts.powers[i]) > kLargestPower) return std::nullopt;
    isQuantity = true;
    const auto next =
        unit.dimension.times(Dimension::base(static_cast<Dimension::Base>(i), parts.powers[i]));
    unit.dimension = *next;
  }
  if (!isQuantity && parts.powers[kRadian] == 1) unit.dimension = Dimension::angle();
  return unit;
}

class Library : OdNonCopyable {
 public:
  Library() {
    ut_set_error_message_handler(ut_ignore);
    // A path of its own: without one, the library would look where the environment says.
    m_system = ut_read_xml(VDM_UNITS_FILE);
    if (m_system == nullptr) return;
    for (std::size_t i = 0; i < m_bases.size(); ++i) {
      m_bases[i] = ut_get_unit_by_name(m_system, kBaseNames[i]);
      if (m_bases[i] == nullptr) m_isReadable = false;
    }
  }
  ~Library() {
    for (ut_unit* base : m_bases) ut_free(base);
    ut_free_system(m_system);
  }

  std::optional<Unit> find(std::wstring_view word) {
    const std::lock_guard lock(m_mutex);
    if (m_system == nullptr || !m_isReadable) throw UnitsUnreadable{VDM_UNITS_FILE};
    const auto known = m_known.find(std::wstring(word));
    if (known != m_known.end()) return known->second;
    const std::optional<Unit> unit = read(OdString(word.data(), word.size()));
    if (unit && m_known.size() < kMostKnown) m_known.emplace(word, *unit);
    return unit;
  }

 private:
  // More words than any drawing uses; hostile texts could go through all prefixes.
  static constexpr std::size_t kMostKnown = 4096;

  std::optional<Unit> read(const OdString& word) {
    ut_unit* found = ut_parse(m_system, word.utf8().data(), UT_UTF8);
    if (found == nullptr) return std::nullopt;
    Parts parts{m_bases.data(), 1.0, {}};
    const ut_status status = ut_accept_visitor(found, &kVisitor, &parts);
    ut_free(found);
    return status == UT_SUCCESS ? unitOf(parts) : std::nullopt;
  }

  std::mutex m_mutex;
  ut_system* m_system = nullptr;
  std::array<ut_unit*, kRadian + 1> m_bases{};
  bool m_isReadable = true;
  std::unordered_map<std::wstring, Unit> m_known;
};

}  // namespace

std::optional<Unit> findInLibrary(std::wstring_view word) {
  constexpr std::size_t kLongestWord = 64;
  if (word.size() > kLongestWord) return std::nullopt;
  static Library library;
  return library.find(word);
}

}  // namespace OdExpression
