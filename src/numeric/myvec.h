// A small dynamic vector of doubles with value semantics: element-wise arithmetic, dot
// and cross products, extremes, norms and stream input and output. A general-purpose
// utility of the toolkit; none of the checks use it.
//
// Sizes, indices and divisors are trusted, with these defined outcomes where a careless
// call would otherwise read memory the vector does not own or produce no value at all:
//   - MyVec(n) and SetValue(n, p) with n < 0 throw std::bad_array_new_length (what
//     new double[n] throws for a negative n); SetValue leaves the vector unchanged then.
//   - Element-wise operations run over the LEFT operand's size. Where the right operand
//     is shorter, its missing elements read as a quiet NaN (so a[i] op NaN, and == is
//     false); Dot then gives NaN. Cross reads elements 0 to 2 of both operands; a missing
//     one reads as a quiet NaN.
//   - Min(), Max() and NormInf() of an empty vector return a quiet NaN.
//   - Self-assignment (v = v) leaves the vector unchanged.
//   - Division by zero is not checked: x / 0.0 gives +-inf, 0.0 / 0.0 gives NaN.
// operator[] and operator() do not check the index: 0 <= i < size (1 <= i <= size for
// the one-based form) is the caller's obligation, as for any raw array.
#pragma once

#include <istream>
#include <ostream>

class MyVec {
 public:
  double* data;  // owned, exactly `size` elements
  int size;

  explicit MyVec(int n);  // n elements, all 0.0
  MyVec(const MyVec& other);
  MyVec(const double& x0, const double& x1, const double& x2);
  MyVec(const double& x0, const double& x1, const double& x2, const double& x3, const double& x4,
        const double& x5);
  MyVec(const double& x0, const double& x1, const double& x2, const double& x3, const double& x4,
        const double& x5, const double& x6);
  ~MyVec();

  MyVec& operator=(const MyVec& other);

  int GetSize() const;
  // Replaces the elements by n values copied from p (p may point into this vector).
  void SetValue(int n, const double* p);
  // Copies all `size` elements to out; the count argument is ignored on purpose.
  void GetValue(int n, double* out) const;

  double& operator[](int i);  // zero-based
  const double& operator[](int i) const;
  double& operator()(int i);  // one-based
  const double& operator()(int i) const;

  // Element-wise over this vector's size; the other's size is not compared.
  bool operator==(const MyVec& other) const;
  bool operator!=(const MyVec& other) const;

  MyVec operator+() const;
  MyVec operator-() const;

  MyVec& operator+=(const MyVec& other);
  MyVec& operator-=(const MyVec& other);
  MyVec& operator*=(const MyVec& other);
  MyVec& operator/=(const MyVec& other);
  MyVec operator+(const MyVec& other) const;
  MyVec operator-(const MyVec& other) const;
  MyVec operator*(const MyVec& other) const;
  MyVec operator/(const MyVec& other) const;

  MyVec& operator+=(const double& s);
  MyVec& operator-=(const double& s);
  MyVec& operator*=(const double& s);
  MyVec& operator/=(const double& s);
  MyVec operator+(const double& s) const;
  MyVec operator-(const double& s) const;
  MyVec operator*(const double& s) const;
  MyVec operator/(const double& s) const;

  double Dot(const MyVec& other) const;   // 0.0 for an empty vector
  MyVec Cross(const MyVec& other) const;  // always 3 elements
  double Min() const;                     // first smallest element scanning upward; NaN when empty
  double Max() const;                     // first largest element scanning upward; NaN when empty
  MyVec Absol() const;
  double Norm1() const;    // sum of |a[i]|; 0.0 when empty
  double Norm2() const;    // sqrt of the plain sum of squares; 0.0 when empty
  double NormInf() const;  // Max() of Absol(); NaN when empty
};

MyVec operator+(const double& s, const MyVec& v);  // s + v[i]
MyVec operator-(const double& s, const MyVec& v);  // s - v[i]
MyVec operator*(const double& s, const MyVec& v);  // s * v[i]
MyVec operator/(const double& s, const MyVec& v);  // s / v[i]

// Reads exactly v.size whitespace-separated doubles into the existing elements.
std::istream& operator>>(std::istream& in, MyVec& v);
// Writes every element in the stream's current format, each followed by std::endl.
std::ostream& operator<<(std::ostream& out, MyVec& v);
