// MyVec against plain arrays: every operation on seeded random vectors, element by
// element, and the defined behaviours at its edges (empty vectors, unequal sizes).
#include "numeric/myvec.h"

#include <gtest/gtest.h>

#include <cmath>
#include <functional>
#include <iomanip>
#include <new>
#include <random>
#include <sstream>
#include <vector>

namespace {

using Elems = std::vector<double>;

Elems elements(const MyVec& v) {
  return Elems(v.data, v.data + v.size);
}

MyVec from(const Elems& x) {
  MyVec v(static_cast<int>(x.size()));
  for (std::size_t i = 0; i < x.size(); ++i) v[static_cast<int>(i)] = x[i];
  return v;
}

Elems zip(const Elems& a, const Elems& b, const std::function<double(double, double)>& f) {
  Elems r;
  for (std::size_t i = 0; i < a.size(); ++i) r.push_back(f(a[i], b[i]));
  return r;
}

TEST(MyVec, EveryOperationAgreesWithPlainArrays) {
  std::mt19937_64 rng(11);
  std::uniform_real_distribution<double> u(-10.0, 10.0);
  for (int trial = 0; trial < 300; ++trial) {
    const std::size_t n = 3 + trial % 5;
    Elems a, b;
    for (std::size_t i = 0; i < n; ++i) {
      a.push_back(u(rng));
      b.push_back(u(rng));
    }
    const double s = u(rng);
    const MyVec va = from(a), vb = from(b);
    EXPECT_EQ(elements(va + vb), zip(a, b, std::plus<double>()));
    EXPECT_EQ(elements(va - vb), zip(a, b, std::minus<double>()));
    EXPECT_EQ(elements(va * vb), zip(a, b, std::multiplies<double>()));
    EXPECT_EQ(elements(va / vb), zip(a, b, std::divides<double>()));
    const Elems ss(n, s);
    EXPECT_EQ(elements(va + s), zip(a, ss, std::plus<double>()));
    EXPECT_EQ(elements(s - va), zip(ss, a, std::minus<double>()));
    EXPECT_EQ(elements(va * s), zip(a, ss, std::multiplies<double>()));
    EXPECT_EQ(elements(s * va), zip(ss, a, std::multiplies<double>()));
    EXPECT_EQ(elements(va / s), zip(a, ss, std::divides<double>()));
    EXPECT_EQ(elements(s / va), zip(ss, a, std::divides<double>()));
    EXPECT_EQ(elements(va - s), zip(a, ss, std::minus<double>()));
    EXPECT_EQ(elements(s + va), zip(ss, a, std::plus<double>()));
    EXPECT_EQ(elements(-va), zip(ss, a, [](double, double x) { return -x; }));
    MyVec c(va);
    c += vb;
    c -= s;
    c *= vb;
    c /= 2.0;
    Elems expected;
    for (std::size_t i = 0; i < n; ++i) expected.push_back((a[i] + b[i] - s) * b[i] / 2.0);
    EXPECT_EQ(elements(c), expected);
    double dot = 0.0, norm1 = 0.0, squares = 0.0, lo = a[0], hi = a[0], inf = 0.0;
    for (std::size_t i = 0; i < n; ++i) {
      dot += a[i] * b[i];
      norm1 += std::fabs(a[i]);
      squares += a[i] * a[i];
      lo = std::min(lo, a[i]);
      hi = std::max(hi, a[i]);
      inf = std::max(inf, std::fabs(a[i]));
    }
    EXPECT_EQ(va.Dot(vb), dot);
    EXPECT_EQ(va.Norm1(), norm1);
    EXPECT_EQ(va.Norm2(), std::sqrt(squares));
    EXPECT_EQ(va.Min(), lo);
    EXPECT_EQ(va.Max(), hi);
    EXPECT_EQ(va.NormInf(), inf);
    const MyVec cross = va.Cross(vb);
    EXPECT_EQ(elements(cross), Elems({a[1] * b[2] - a[2] * b[1], a[2] * b[0] - a[0] * b[2],
                                      a[0] * b[1] - a[1] * b[0]}));
    EXPECT_TRUE(va == from(a));
    EXPECT_TRUE(va != vb);
    std::stringstream io;
    io << std::setprecision(17) << const_cast<MyVec&>(va);
    MyVec back(static_cast<int>(n));
    io >> back;
    EXPECT_EQ(elements(back), a);
    io << " 7";  // reading a vector takes exactly its size in numbers
    double next = 0.0;
    EXPECT_TRUE(io >> next && next == 7.0);
    if (HasFailure()) return;
  }
}

TEST(MyVec, EdgesOfSizeAndValue) {
  EXPECT_THROW(MyVec(-1), std::bad_array_new_length);
  const MyVec empty(0);
  EXPECT_EQ(empty.Dot(MyVec(1.0, 2.0, 3.0)), 0.0);
  EXPECT_EQ(empty.Norm2(), 0.0);
  EXPECT_TRUE(std::isnan(empty.Min()));
  EXPECT_TRUE(std::isnan(empty.Max()));
  EXPECT_TRUE(std::isnan(empty.NormInf()));
  // The result takes the left operand's size; missing right elements read as NaN.
  const MyVec three(1.0, 2.0, 3.0);
  const MyVec six(10.0, 20.0, 30.0, 40.0, 50.0, 60.0);
  EXPECT_EQ(elements(three + six), Elems({11.0, 22.0, 33.0}));
  EXPECT_TRUE(three == MyVec(1.0, 2.0, 3.0, 99.0, 99.0, 99.0));
  EXPECT_EQ(elements(MyVec(1.0, 2.0, 3.0, 4.0, 5.0, 6.0, 7.0)), Elems({1, 2, 3, 4, 5, 6, 7}));
  EXPECT_TRUE(std::isnan((six - three)[4]));
  EXPECT_TRUE(std::isnan(six.Dot(three)));
  // Self-assignment and a replacement from the vector's own array.
  MyVec v(1.5, -2.5, 3.5, 4.5, 5.5, 6.5);
  MyVec& alias = v;
  v = alias;
  EXPECT_EQ(elements(v), Elems({1.5, -2.5, 3.5, 4.5, 5.5, 6.5}));
  v.SetValue(3, v.data + 2);
  EXPECT_EQ(elements(v), Elems({3.5, 4.5, 5.5}));
  EXPECT_EQ(&v(1), &v[0]);
  // Ties keep the first: +0 and -0.
  EXPECT_FALSE(std::signbit(MyVec(0.0, -0.0, 1.0).Min()));
  EXPECT_TRUE(std::signbit(MyVec(-0.0, 0.0, -1.0).Max()));
}

}  // namespace
