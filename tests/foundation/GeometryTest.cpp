#include "toolkit/foundation/Geometry.h"

#include <gtest/gtest.h>

#include "tests/support/GeometryPrinting.h"

using namespace zel;

namespace {

struct Division {
  CGRect slice, remainder;
};

Division divide(CGRect r, double amount, CGRectEdge edge) {
  Division d;
  CGRectDivide(r, &d.slice, &d.remainder, amount, edge);
  return d;
}

}  // namespace

TEST(Geometry, DivideCutsFromEachEdgeAndClampsTheAmount) {
  const CGRect r = CGRectMake(10, 20, 100, 50);
  struct Case {
    CGRectEdge edge;
    double amount;
    CGRect slice, remainder;
  } cases[] = {
      {CGRectMinXEdge, 30, CGRectMake(10, 20, 30, 50), CGRectMake(40, 20, 70, 50)},
      {CGRectMaxXEdge, 30, CGRectMake(80, 20, 30, 50), CGRectMake(10, 20, 70, 50)},
      {CGRectMinYEdge, 15, CGRectMake(10, 20, 100, 15), CGRectMake(10, 35, 100, 35)},
      {CGRectMaxYEdge, 15, CGRectMake(10, 55, 100, 15), CGRectMake(10, 20, 100, 35)},
      {CGRectMaxXEdge, 500, r, CGRectMake(10, 20, 0, 50)},
      {CGRectMinYEdge, -5, CGRectMake(10, 20, 100, 0), r},
      {CGRectMaxYEdge, 80, r, CGRectMake(10, 20, 100, 0)},
  };
  for (const Case& c : cases) {
    Division d = divide(r, c.amount, c.edge);
    EXPECT_EQ(d.slice, c.slice) << c.edge << " " << c.amount;
    EXPECT_EQ(d.remainder, c.remainder) << c.edge << " " << c.amount;
  }
  // A rectangle of negative size is divided as its standardized form.
  EXPECT_EQ(divide(CGRectMake(110, 70, -100, -50), 30, CGRectMinXEdge).slice, CGRectMake(10, 20, 30, 50));
}

TEST(Geometry, InsetGrowsShrinksAndCollapsesToNull) {
  const CGRect r = CGRectMake(0, 0, 10, 6);
  EXPECT_EQ(CGRectInset(r, 2, 1), CGRectMake(2, 1, 6, 4));
  EXPECT_EQ(CGRectInset(r, -64, -64), CGRectMake(-64, -64, 138, 134));
  EXPECT_EQ(CGRectInset(r, 5, 3), CGRectMake(5, 3, 0, 0));  // empty, not null
  EXPECT_FALSE(CGRectIsNull(CGRectInset(r, 5, 3)));
  EXPECT_TRUE(CGRectIsNull(CGRectInset(r, 5.5, 0)));
  EXPECT_TRUE(CGRectIsNull(CGRectInset(r, 0, 4)));
  EXPECT_TRUE(CGRectIsNull(CGRectInset(CGRectNull, -10, -10)));
}

TEST(Geometry, IntegralTakesTheSmallestWholePointRectangleAround) {
  EXPECT_EQ(CGRectIntegral(CGRectMake(0.5, 1.2, 10, 3.3)), CGRectMake(0, 1, 11, 4));
  EXPECT_EQ(CGRectIntegral(CGRectMake(-0.5, -2.5, 1, 1)), CGRectMake(-1, -3, 2, 2));
  EXPECT_EQ(CGRectIntegral(CGRectMake(5.5, 5.5, -1, 0)), CGRectMake(4, 5, 2, 1));
  EXPECT_TRUE(CGRectIsNull(CGRectIntegral(CGRectNull)));
}

TEST(Geometry, UnionIgnoresNullAndIntersectionOfDisjointIsNull) {
  const CGRect a = CGRectMake(0, 0, 10, 10), b = CGRectMake(20, -5, 5, 5);
  EXPECT_EQ(CGRectUnion(a, b), CGRectMake(0, -5, 25, 15));
  EXPECT_EQ(CGRectUnion(CGRectNull, b), b);
  EXPECT_EQ(CGRectUnion(a, CGRectNull), a);
  // The zero rectangle is not null: it pulls the union to the origin.
  EXPECT_EQ(CGRectUnion(CGRectZero, b), CGRectMake(0, -5, 25, 5));
  EXPECT_TRUE(CGRectIsNull(CGRectIntersection(a, b)));
  EXPECT_FALSE(CGRectIntersectsRect(a, CGRectMake(10, 0, 5, 5)));  // touching only
}

TEST(Geometry, ContainsPointIsHalfOpenOnTheMaximumSides) {
  const CGRect r = CGRectMake(10, 20, 30, 40);
  EXPECT_TRUE(CGRectContainsPoint(r, {10, 20}));
  EXPECT_TRUE(CGRectContainsPoint(r, {39.999, 59.999}));
  EXPECT_FALSE(CGRectContainsPoint(r, {40, 30}));
  EXPECT_FALSE(CGRectContainsPoint(r, {20, 60}));
  EXPECT_FALSE(CGRectContainsPoint(CGRectNull, {0, 0}));
  EXPECT_TRUE(CGRectContainsPoint(CGRectMake(40, 60, -30, -40), {10, 20}));
  EXPECT_TRUE(CGRectContainsRect(r, CGRectMake(10, 20, 30, 40)));
  EXPECT_FALSE(CGRectContainsRect(r, CGRectMake(10, 20, 31, 40)));
}
