#include <gtest/gtest.h>

#include <cmath>
#include <iomanip>
#include <limits>
#include <new>
#include <sstream>
#include <vector>

#include "numeric/myvec.h"

namespace {

std::vector<double> elements(const MyVec& v) { return std::vector<double>(v.data, v.data + v.size); }

using Elems = std::vector<double>;

const double kInf = std::numeric_limits<double>::infinity();

TEST(MyVecConstruction, SizesAndInitialValues) {
  MyVec zeros(4);
  EXPECT_EQ(zeros.GetSize(), 4);
  EXPECT_EQ(elements(zeros), Elems({0.0, 0.0, 0.0, 0.0}));
  EXPECT_EQ(elements(MyVec(1.0, 2.0, 3.0)), Elems({1.0, 2.0, 3.0}));
  EXPECT_EQ(elements(MyVec(1.0, 2.0, 3.0, 4.0, 5.0, 6.0)), Elems({1.0, 2.0, 3.0, 4.0, 5.0, 6.0}));
  EXPECT_EQ(elements(MyVec(1.0, 2.0, 3.0, 4.0, 5.0, 6.0, 7.0)),
            Elems({1.0, 2.0, 3.0, 4.0, 5.0, 6.0, 7.0}));
}

TEST(MyVecConstruction, NegativeSizeThrowsTheArrayLengthError) {
  EXPECT_THROW(MyVec(-1), std::bad_array_new_length);
  MyVec v(1.0, 2.0, 3.0);
  const double src[1] = {9.0};
  EXPECT_THROW(v.SetValue(-2, src), std::bad_array_new_length);
  EXPECT_EQ(elements(v), Elems({1.0, 2.0, 3.0}));  // untouched by the failed replacement
}

TEST(MyVecConstruction, EmptyVector) {
  MyVec empty(0);
  EXPECT_EQ(empty.GetSize(), 0);
  EXPECT_EQ(empty.Dot(MyVec(1.0, 2.0, 3.0)), 0.0);
  EXPECT_EQ(empty.Norm1(), 0.0);
  EXPECT_EQ(empty.Norm2(), 0.0);
  EXPECT_TRUE(empty == MyVec(1.0, 2.0, 3.0));
  EXPECT_TRUE(empty == MyVec(0));
  EXPECT_TRUE(std::isnan(empty.Min()));
  EXPECT_TRUE(std::isnan(empty.Max()));
  EXPECT_TRUE(std::isnan(empty.NormInf()));
  EXPECT_EQ((empty + empty).GetSize(), 0);
}

TEST(MyVecCopy, CopiesAreDeep) {
  MyVec a(1.0, 2.0, 3.0);
  MyVec b(a);
  MyVec c(5);
  c = a;
  EXPECT_EQ(c.GetSize(), 3);
  b[0] = 10.0;
  c[1] = 20.0;
  EXPECT_EQ(elements(a), Elems({1.0, 2.0, 3.0}));
  EXPECT_EQ(elements(b), Elems({10.0, 2.0, 3.0}));
  EXPECT_EQ(elements(c), Elems({1.0, 20.0, 3.0}));
}

TEST(MyVecCopy, SelfAssignmentLeavesTheVectorUnchanged) {
  MyVec v(1.5, -2.5, 3.5, 4.5, 5.5, 6.5);
  MyVec& alias = v;
  v = alias;
  EXPECT_EQ(elements(v), Elems({1.5, -2.5, 3.5, 4.5, 5.5, 6.5}));
  // A replacement taken from the vector's own array.
  v.SetValue(3, v.data + 2);
  EXPECT_EQ(elements(v), Elems({3.5, 4.5, 5.5}));
}

TEST(MyVecAccess, SetAndGetValue) {
  MyVec v(2);
  const double src[4] = {4.0, 3.0, 2.0, 1.0};
  v.SetValue(4, src);
  EXPECT_EQ(elements(v), Elems({4.0, 3.0, 2.0, 1.0}));

  MyVec three(1.0, 2.0, 3.0);
  double out[10];
  for (double& x : out) x = -7.0;
  three.GetValue(100, out);  // the count is ignored: exactly three values are written
  EXPECT_EQ(std::vector<double>(out, out + 10),
            Elems({1.0, 2.0, 3.0, -7.0, -7.0, -7.0, -7.0, -7.0, -7.0, -7.0}));
}

TEST(MyVecAccess, OneBasedAndZeroBasedReachTheSameElements) {
  MyVec v(1.0, 2.0, 3.0);
  EXPECT_EQ(&v(1), &v[0]);
  EXPECT_EQ(&v(3), &v[2]);
  v(2) = 8.0;
  EXPECT_EQ(v[1], 8.0);
  const MyVec& cv = v;
  EXPECT_EQ(&cv(1), &cv[0]);
  EXPECT_EQ(cv(3), 3.0);
}

TEST(MyVecCompare, ElementWiseOverTheLeftSize) {
  const MyVec a(1.0, 2.0, 3.0);
  EXPECT_TRUE(a == MyVec(1.0, 2.0, 3.0));
  EXPECT_FALSE(a != MyVec(1.0, 2.0, 3.0));
  EXPECT_FALSE(a == MyVec(1.0, 2.0, 3.5));
  EXPECT_TRUE(a != MyVec(1.0, 2.0, 3.5));
  EXPECT_FALSE(a == MyVec(0.0, 2.0, 3.0));
  // The longer right operand's extra elements are not looked at.
  EXPECT_TRUE(a == MyVec(1.0, 2.0, 3.0, 99.0, 99.0, 99.0));
  // Signed zeros compare equal.
  EXPECT_TRUE(MyVec(0.0, -0.0, 1.0) == MyVec(-0.0, 0.0, 1.0));
  // A shorter right operand lacks elements, and a missing element equals nothing.
  EXPECT_FALSE(MyVec(1.0, 2.0, 3.0, 4.0, 5.0, 6.0) == a);
  EXPECT_TRUE(MyVec(1.0, 2.0, 3.0, 4.0, 5.0, 6.0) != a);
}

TEST(MyVecCompare, NaNEqualsNothing) {
  const double nan = std::numeric_limits<double>::quiet_NaN();
  const MyVec v(1.0, nan, 3.0);
  EXPECT_FALSE(v == v);
  EXPECT_TRUE(v != v);
}

TEST(MyVecArithmetic, ElementWiseWithVectors) {
  const MyVec a(1.0, 2.0, 3.0);
  const MyVec b(4.0, -5.0, 0.5);
  EXPECT_EQ(elements(a + b), Elems({5.0, -3.0, 3.5}));
  EXPECT_EQ(elements(a - b), Elems({-3.0, 7.0, 2.5}));
  EXPECT_EQ(elements(a * b), Elems({4.0, -10.0, 1.5}));
  EXPECT_EQ(elements(a / b), Elems({0.25, -0.4, 6.0}));
  EXPECT_EQ(elements(+b), Elems({4.0, -5.0, 0.5}));
  EXPECT_EQ(elements(-b), Elems({-4.0, 5.0, -0.5}));
  EXPECT_EQ(elements(a), Elems({1.0, 2.0, 3.0}));  // operands untouched

  MyVec c(a);
  EXPECT_EQ(&(c += b), &c);
  EXPECT_EQ(elements(c), Elems({5.0, -3.0, 3.5}));
  EXPECT_EQ(&(c -= b), &c);
  EXPECT_EQ(elements(c), Elems({1.0, 2.0, 3.0}));
  EXPECT_EQ(&(c *= b), &c);
  EXPECT_EQ(elements(c), Elems({4.0, -10.0, 1.5}));
  EXPECT_EQ(&(c /= b), &c);
  EXPECT_EQ(elements(c), Elems({1.0, 2.0, 3.0}));
  c += c;  // an operand that is the vector itself
  EXPECT_EQ(elements(c), Elems({2.0, 4.0, 6.0}));
}

TEST(MyVecArithmetic, ScalarOnEitherSide) {
  const MyVec a(1.0, 2.0, 3.0);
  EXPECT_EQ(elements(a + 2.0), Elems({3.0, 4.0, 5.0}));
  EXPECT_EQ(elements(2.0 + a), Elems({3.0, 4.0, 5.0}));
  EXPECT_EQ(elements(a - 2.0), Elems({-1.0, 0.0, 1.0}));
  EXPECT_EQ(elements(2.0 - a), Elems({1.0, 0.0, -1.0}));
  EXPECT_EQ(elements(a * 3.0), Elems({3.0, 6.0, 9.0}));
  EXPECT_EQ(elements(3.0 * a), Elems({3.0, 6.0, 9.0}));
  EXPECT_EQ(elements(a / 4.0), Elems({0.25, 0.5, 0.75}));
  EXPECT_EQ(elements(6.0 / a), Elems({6.0, 3.0, 2.0}));

  MyVec c(a);
  EXPECT_EQ(&(c += 1.0), &c);
  EXPECT_EQ(&(c -= 0.5), &c);
  EXPECT_EQ(&(c *= 4.0), &c);
  EXPECT_EQ(&(c /= 2.0), &c);
  EXPECT_EQ(elements(c), Elems({3.0, 5.0, 7.0}));
  c *= c[0];  // the scalar is an element of the vector being scaled
  EXPECT_EQ(elements(c), Elems({9.0, 15.0, 21.0}));
}

TEST(MyVecArithmetic, ResultTakesTheLeftOperandsSize) {
  const MyVec three(1.0, 2.0, 3.0);
  const MyVec six(10.0, 20.0, 30.0, 40.0, 50.0, 60.0);
  const MyVec sum = three + six;
  EXPECT_EQ(sum.GetSize(), 3);
  EXPECT_EQ(elements(sum), Elems({11.0, 22.0, 33.0}));
  EXPECT_EQ(three.Dot(six), 140.0);
  // Swapped, the elements past the shorter right operand meet a NaN.
  const MyVec swapped = six - three;
  ASSERT_EQ(swapped.GetSize(), 6);
  EXPECT_EQ(Elems(swapped.data, swapped.data + 3), Elems({9.0, 18.0, 27.0}));
  for (int i = 3; i < 6; ++i) EXPECT_TRUE(std::isnan(swapped[i])) << i;
  EXPECT_TRUE(std::isnan(six.Dot(three)));
}

TEST(MyVecArithmetic, DivisionByZeroGivesInfinitiesAndNaN) {
  const MyVec q = MyVec(1.0, -1.0, 0.0) / MyVec(0.0, 0.0, 0.0);
  EXPECT_EQ(q[0], kInf);
  EXPECT_EQ(q[1], -kInf);
  EXPECT_TRUE(std::isnan(q[2]));
  const MyVec s = MyVec(2.0, -2.0, 0.0) / 0.0;
  EXPECT_EQ(s[0], kInf);
  EXPECT_EQ(s[1], -kInf);
  EXPECT_TRUE(std::isnan(s[2]));
  const MyVec r = 1.0 / MyVec(0.0, -0.0, 2.0);
  EXPECT_EQ(elements(r), Elems({kInf, -kInf, 0.5}));
}

TEST(MyVecProducts, DotAndCross) {
  const MyVec a(1.0, 2.0, 3.0);
  const MyVec b(4.0, -5.0, 0.5);
  EXPECT_EQ(a.Dot(b), -4.5);
  EXPECT_EQ(elements(MyVec(1.0, 0.0, 0.0).Cross(MyVec(0.0, 1.0, 0.0))), Elems({0.0, 0.0, 1.0}));
  EXPECT_EQ(elements(a.Cross(b)), Elems({16.0, 11.5, -13.0}));
  EXPECT_EQ(elements(b.Cross(a)), Elems({-16.0, -11.5, 13.0}));
  EXPECT_EQ(a.Cross(b).Dot(a), 0.0);
  // Only elements 0 to 2 take part, whatever the sizes.
  const MyVec a6(1.0, 2.0, 3.0, 100.0, 200.0, 300.0);
  const MyVec b7(4.0, -5.0, 0.5, 7.0, 7.0, 7.0, 7.0);
  const MyVec c = a6.Cross(b7);
  EXPECT_EQ(c.GetSize(), 3);
  EXPECT_EQ(elements(c), Elems({16.0, 11.5, -13.0}));
}

TEST(MyVecProducts, CrossWithAMissingComponentReadsNaN) {
  MyVec two(2);
  two[0] = 4.0;
  two[1] = -5.0;
  const MyVec c = MyVec(1.0, 2.0, 3.0).Cross(two);
  EXPECT_TRUE(std::isnan(c[0]));
  EXPECT_TRUE(std::isnan(c[1]));
  EXPECT_EQ(c[2], -13.0);  // a0 b1 - a1 b0 needs no third component
}

TEST(MyVecExtremes, MinMaxKeepTheFirstOnTies) {
  const MyVec v(3.0, -1.0, 4.0, -1.0, 5.0, 5.0);
  EXPECT_EQ(v.Min(), -1.0);
  EXPECT_EQ(v.Max(), 5.0);
  // +0 and -0 tie; the earlier one is kept.
  EXPECT_FALSE(std::signbit(MyVec(0.0, -0.0, 1.0).Min()));
  EXPECT_TRUE(std::signbit(MyVec(-0.0, 0.0, 1.0).Min()));
  EXPECT_FALSE(std::signbit(MyVec(0.0, -0.0, -1.0).Max()));
  EXPECT_TRUE(std::signbit(MyVec(-0.0, 0.0, -1.0).Max()));
}

TEST(MyVecNorms, HandComputed) {
  const MyVec v(3.0, -4.0, 0.0);
  EXPECT_EQ(elements(v.Absol()), Elems({3.0, 4.0, 0.0}));
  EXPECT_EQ(v.Norm1(), 7.0);
  EXPECT_EQ(v.Norm2(), 5.0);
  EXPECT_EQ(v.NormInf(), 4.0);
  EXPECT_EQ(MyVec(-1.0, -9.0, 2.0).NormInf(), 9.0);
  // The sum of squares is accumulated without scaling, so it overflows.
  EXPECT_EQ(MyVec(1e200, 1e200, 0.0).Norm2(), kInf);
  EXPECT_EQ(MyVec(1e-200, 0.0, 0.0).Norm2(), 0.0);
}

// Counts the flushes that reach the buffer.
class CountingBuf : public std::stringbuf {
 public:
  int syncs = 0;

 protected:
  int sync() override {
    ++syncs;
    return std::stringbuf::sync();
  }
};

TEST(MyVecStreams, OneElementPerLineEachFlushed) {
  MyVec v(1.0, -2.5, 3e20);
  CountingBuf buf;
  std::ostream out(&buf);
  std::ostream& ret = out << v;
  EXPECT_EQ(&ret, &out);
  EXPECT_EQ(buf.str(), "1\n-2.5\n3e+20\n");
  EXPECT_EQ(buf.syncs, 3);

  std::ostringstream fixed;
  fixed << std::fixed << std::setprecision(2) << v;
  EXPECT_EQ(fixed.str(), "1.00\n-2.50\n300000000000000000000.00\n");

  MyVec empty(0);
  std::ostringstream none;
  none << empty;
  EXPECT_EQ(none.str(), "");
}

TEST(MyVecStreams, RoundTripAtFullPrecision) {
  MyVec v(0.1, -1.0 / 3.0, 6.02214076e23, -123.456, 2.0 / 3.0, 1.0, 1e-300);
  std::stringstream io;
  io << std::setprecision(17) << v;
  MyVec back(7);
  io >> back;
  EXPECT_FALSE(io.fail());
  EXPECT_EQ(elements(back), elements(v));
}

TEST(MyVecStreams, InputFillsTheExistingSize) {
  std::istringstream in("7 8.5\n\t-9 10");
  MyVec v(3);
  std::istream& ret = in >> v;
  EXPECT_EQ(&ret, &in);
  EXPECT_EQ(elements(v), Elems({7.0, 8.5, -9.0}));
  double rest = 0.0;
  in >> rest;
  EXPECT_EQ(rest, 10.0);  // the fourth number is left in the stream
}

}  // namespace
