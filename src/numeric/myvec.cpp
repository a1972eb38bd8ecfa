#include "numeric/myvec.h"

#include <cmath>
#include <cstddef>
#include <limits>
#include <new>

namespace {

constexpr double kQuietNaN = std::numeric_limits<double>::quiet_NaN();

// new double[n] with a negative run-time n throws this very exception; testing first
// keeps the behaviour independent of how the allocation expression is written.
double* allocate(int n) {
  if (n < 0) throw std::bad_array_new_length();
  return new double[static_cast<std::size_t>(n)];
}

double* allocate_copy(int n, const double* p) {
  double* fresh = allocate(n);
  for (int i = 0; i < n; ++i) fresh[i] = p[i];
  return fresh;
}

// Number of leading elements an element-wise pass can take from the right operand.
int shared_length(const MyVec& left, const MyVec& right) {
  return right.size < left.size ? right.size : left.size;
}

double element_or_nan(const MyVec& v, int i) {
  return i < v.size ? v.data[i] : kQuietNaN;
}

}  // namespace

MyVec::MyVec(int n) : data(allocate(n)), size(n) {
  for (int i = 0; i < n; ++i) data[i] = 0.0;
}

MyVec::MyVec(const MyVec& other) : data(allocate_copy(other.size, other.data)), size(other.size) {}

MyVec::MyVec(const double& x0, const double& x1, const double& x2) : data(allocate(3)), size(3) {
  data[0] = x0;
  data[1] = x1;
  data[2] = x2;
}

MyVec::MyVec(const double& x0, const double& x1, const double& x2, const double& x3,
             const double& x4, const double& x5)
    : data(allocate(6)), size(6) {
  data[0] = x0;
  data[1] = x1;
  data[2] = x2;
  data[3] = x3;
  data[4] = x4;
  data[5] = x5;
}

MyVec::MyVec(const double& x0, const double& x1, const double& x2, const double& x3,
             const double& x4, const double& x5, const double& x6)
    : data(allocate(7)), size(7) {
  data[0] = x0;
  data[1] = x1;
  data[2] = x2;
  data[3] = x3;
  data[4] = x4;
  data[5] = x5;
  data[6] = x6;
}

MyVec::~MyVec() {
  delete[] data;
}

// The copy is taken before the old array goes, so v = v keeps its elements and a failed
// allocation leaves the target as it was.
MyVec& MyVec::operator=(const MyVec& other) {
  SetValue(other.size, other.data);
  return *this;
}

int MyVec::GetSize() const {
  return size;
}

void MyVec::SetValue(int n, const double* p) {
  double* fresh = allocate_copy(n, p);
  delete[] data;
  data = fresh;
  size = n;
}

void MyVec::GetValue(int /*n*/, double* out) const {
  for (int i = 0; i < size; ++i) out[i] = data[i];
}

double& MyVec::operator[](int i) {
  return data[i];
}
const double& MyVec::operator[](int i) const {
  return data[i];
}
double& MyVec::operator()(int i) {
  return data[i - 1];
}
const double& MyVec::operator()(int i) const {
  return data[i - 1];
}

bool MyVec::operator==(const MyVec& other) const {
  const int m = shared_length(*this, other);
  for (int i = 0; i < m; ++i) {
    if (!(data[i] == other.data[i])) return false;
  }
  // Elements the other vector lacks compare as NaN, which equals nothing.
  return m == size;
}

bool MyVec::operator!=(const MyVec& other) const {
  return !(*this == other);
}

MyVec MyVec::operator+() const {
  return MyVec(*this);
}

MyVec MyVec::operator-() const {
  MyVec r(*this);
  for (int i = 0; i < size; ++i) r.data[i] = -data[i];
  return r;
}

// In-place element-wise operators: the shared part is a plain loop over two arrays; the
// elements the right operand lacks meet a NaN.
#define KAVREN_MYVEC_INPLACE_VECTOR(OP)                  \
  MyVec& MyVec::operator OP(const MyVec& other) {        \
    const int m = shared_length(*this, other);           \
    const double* b = other.data;                        \
    for (int i = 0; i < m; ++i) data[i] OP b[i];         \
    for (int i = m; i < size; ++i) data[i] OP kQuietNaN; \
    return *this;                                        \
  }

KAVREN_MYVEC_INPLACE_VECTOR(+=)
KAVREN_MYVEC_INPLACE_VECTOR(-=)
KAVREN_MYVEC_INPLACE_VECTOR(*=)
KAVREN_MYVEC_INPLACE_VECTOR(/=)
#undef KAVREN_MYVEC_INPLACE_VECTOR

MyVec MyVec::operator+(const MyVec& other) const {
  MyVec r(*this);
  r += other;
  return r;
}

MyVec MyVec::operator-(const MyVec& other) const {
  MyVec r(*this);
  r -= other;
  return r;
}

MyVec MyVec::operator*(const MyVec& other) const {
  MyVec r(*this);
  r *= other;
  return r;
}

MyVec MyVec::operator/(const MyVec& other) const {
  MyVec r(*this);
  r /= other;
  return r;
}

// The scalar is read once: it may be an element of this very vector.
MyVec& MyVec::operator+=(const double& s) {
  const double v = s;
  for (int i = 0; i < size; ++i) data[i] += v;
  return *this;
}

MyVec& MyVec::operator-=(const double& s) {
  const double v = s;
  for (int i = 0; i < size; ++i) data[i] -= v;
  return *this;
}

MyVec& MyVec::operator*=(const double& s) {
  const double v = s;
  for (int i = 0; i < size; ++i) data[i] *= v;
  return *this;
}

MyVec& MyVec::operator/=(const double& s) {
  const double v = s;
  for (int i = 0; i < size; ++i) data[i] /= v;
  return *this;
}

MyVec MyVec::operator+(const double& s) const {
  MyVec r(*this);
  r += s;
  return r;
}

MyVec MyVec::operator-(const double& s) const {
  MyVec r(*this);
  r -= s;
  return r;
}

MyVec MyVec::operator*(const double& s) const {
  MyVec r(*this);
  r *= s;
  return r;
}

MyVec MyVec::operator/(const double& s) const {
  MyVec r(*this);
  r /= s;
  return r;
}

MyVec operator+(const double& s, const MyVec& v) {
  MyVec r(v);
  for (int i = 0; i < r.size; ++i) r.data[i] = s + v.data[i];
  return r;
}

MyVec operator-(const double& s, const MyVec& v) {
  MyVec r(v);
  for (int i = 0; i < r.size; ++i) r.data[i] = s - v.data[i];
  return r;
}

MyVec operator*(const double& s, const MyVec& v) {
  MyVec r(v);
  for (int i = 0; i < r.size; ++i) r.data[i] = s * v.data[i];
  return r;
}

MyVec operator/(const double& s, const MyVec& v) {
  MyVec r(v);
  for (int i = 0; i < r.size; ++i) r.data[i] = s / v.data[i];
  return r;
}

double MyVec::Dot(const MyVec& other) const {
  const int m = shared_length(*this, other);
  double sum = 0.0;
  for (int i = 0; i < m; ++i) sum += data[i] * other.data[i];
  if (m < size) sum += kQuietNaN;
  return sum;
}

MyVec MyVec::Cross(const MyVec& other) const {
  const double a0 = element_or_nan(*this, 0);
  const double a1 = element_or_nan(*this, 1);
  const double a2 = element_or_nan(*this, 2);
  const double b0 = element_or_nan(other, 0);
  const double b1 = element_or_nan(other, 1);
  const double b2 = element_or_nan(other, 2);
  return MyVec(a1 * b2 - a2 * b1, a2 * b0 - a0 * b2, a0 * b1 - a1 * b0);
}

double MyVec::Min() const {
  if (size == 0) return kQuietNaN;
  double m = data[0];
  for (int i = 1; i < size; ++i) {
    if (data[i] < m) m = data[i];
  }
  return m;
}

double MyVec::Max() const {
  if (size == 0) return kQuietNaN;
  double m = data[0];
  for (int i = 1; i < size; ++i) {
    if (data[i] > m) m = data[i];
  }
  return m;
}

MyVec MyVec::Absol() const {
  MyVec r(*this);
  for (int i = 0; i < size; ++i) r.data[i] = std::fabs(data[i]);
  return r;
}

double MyVec::Norm1() const {
  double sum = 0.0;
  for (int i = 0; i < size; ++i) sum += std::fabs(data[i]);
  return sum;
}

double MyVec::Norm2() const {
  double sum = 0.0;
  for (int i = 0; i < size; ++i) sum += data[i] * data[i];
  return std::sqrt(sum);
}

double MyVec::NormInf() const {
  return Absol().Max();
}

std::istream& operator>>(std::istream& in, MyVec& v) {
  for (int i = 0; i < v.size; ++i) in >> v.data[i];
  return in;
}

std::ostream& operator<<(std::ostream& out, MyVec& v) {
  for (int i = 0; i < v.size; ++i) out << v.data[i] << std::endl;
  return out;
}
