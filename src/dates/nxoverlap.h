// Whether two periods share a point, for any values and order of them. An Order answers
// NotAfter(a, b) and Before(a, b); it may leave two values without order.
#ifndef NXOVERLAP_H
#define NXOVERLAP_H

/// The same for a first period that runs forward. The second may run either way.
template <class Order, class T>
bool NxForwardOverlaps(const T& low, const T& high, const T& b1, const T& b2) {
  const auto inside = [&](const T& b) { return Order::NotAfter(low, b) && Order::NotAfter(b, high); };
  if (inside(b1) || inside(b2)) return true;
  // Neither end of the second period lies in the first one: it may still span it.
  if (Order::NotAfter(b1, low) && Order::NotAfter(high, b2)) return true;
  return !Order::Before(low, b2) && Order::NotAfter(high, b1);
}

/// `forward` tells whether a1 to a2 runs forward.
template <class Order, class T>
bool NxOverlaps(bool forward, const T& a1, const T& a2, const T& b1, const T& b2) {
  return forward ? NxForwardOverlaps<Order>(a1, a2, b1, b2) : NxForwardOverlaps<Order>(a2, a1, b1, b2);
}

/// The order that the difference `!=` of two values gives.
template <class T>
struct NxDifferenceOrder {
  static bool NotAfter(const T& a, const T& b) { return (a != b) <= 0; }
  static bool Before(const T& a, const T& b) { return (a != b) < 0; }
};

#endif
