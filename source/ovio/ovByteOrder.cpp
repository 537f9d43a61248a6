#include "ovra/ovByteOrder.h"

ovByteOrder ovByteOrderHandler::native_order() noexcept {
    const uint16_t one = 1;
    unsigned char first;
    std::memcpy(&first, &one, 1);
    return first == 1 ? ovBYTE_ORDER_LITTLE_ENDIAN : ovBYTE_ORDER_BIG_ENDIAN;
}

void ovIeee::zero_divide(int) noexcept {}
