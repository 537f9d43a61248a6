#include "ovra/ovByteOrder.h"

#include <gtest/gtest.h>

#include <cstring>

namespace {

const ovByteOrder kLittle = ovBYTE_ORDER_LITTLE_ENDIAN;
const ovByteOrder kBig = ovBYTE_ORDER_BIG_ENDIAN;

TEST(ovByteOrderHandler, EqualOrdersKeepTheBytesOtherwiseAllAreReversed) {
    ASSERT_EQ(ovByteOrderHandler::native_order(), kLittle) << "both targets are little-endian";
    const unsigned char two[] = {0x01, 0x02};
    EXPECT_EQ(ovByteOrderHandler(kLittle, kLittle).int16(two), 0x0201);
    EXPECT_EQ(ovByteOrderHandler(kBig, kLittle).int16(two), 0x0102);
    // Only equality counts: two big orders keep the bytes too.
    EXPECT_EQ(ovByteOrderHandler(kBig, kBig).int16(two), 0x0201);
    EXPECT_EQ(ovByteOrderHandler(kLittle, static_cast<ovByteOrder>(7)).int16(two), 0x0102);

    const unsigned char minus_two[] = {0xFF, 0xFF, 0xFF, 0xFE};
    EXPECT_EQ(ovByteOrderHandler(kBig, kLittle).int32(minus_two), -2);
    EXPECT_EQ(ovByteOrderHandler(kLittle, kLittle).int32(minus_two), -16777217);

    const unsigned char one_be[] = {0x3F, 0xF0, 0, 0, 0, 0, 0, 0};
    EXPECT_EQ(ovByteOrderHandler(kBig, kLittle).real64(one_be), 1.0);
    const unsigned char half_be[] = {0x3F, 0x00, 0x00, 0x00};
    EXPECT_EQ(ovByteOrderHandler(kBig, kLittle).real32(half_be), 0.5f);
}

TEST(ovByteOrderHandler, PointerKindsUnalignedBytesAndNull) {
    ovByteOrderHandler h(kBig, kLittle);
    // Unaligned, and every narrow pointer type alike.
    unsigned char buf[12] = {0, 0x12, 0x34, 0x56, 0x78, 0x9A, 0xBC, 0xDE, 0xF0};
    const unsigned char* u = buf + 1;
    EXPECT_EQ(h.int32(u), 0x12345678);
    EXPECT_EQ(h.int32(reinterpret_cast<const char*>(u)), 0x12345678);
    EXPECT_EQ(h.int32(reinterpret_cast<const signed char*>(u)), 0x12345678);
    EXPECT_EQ(h.int16(reinterpret_cast<const char*>(u)), 0x1234);

    // Bytes are reinterpreted, not converted: a NaN payload comes through whole.
    const unsigned char nan_be[] = {0x7F, 0xF0, 0, 0, 0, 0, 0, 0x01};
    const double nan = h.real64(nan_be);
    uint64_t bits;
    std::memcpy(&bits, &nan, 8);
    EXPECT_EQ(bits, 0x7FF0000000000001ull);

    EXPECT_EQ(h.int32(static_cast<const char*>(nullptr)), 0);
    EXPECT_EQ(h.real64(static_cast<const unsigned char*>(nullptr)), 0.0);

    h.set_orders(kLittle, kLittle);
    EXPECT_EQ(h.data_order(), kLittle);
    EXPECT_EQ(h.machine_order(), kLittle);
    EXPECT_EQ(h.int16(u), 0x3412);
    ovIeee::zero_divide(1); // a no-op, callable
}

} // namespace
