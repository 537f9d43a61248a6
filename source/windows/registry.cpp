#include "ovra/ovRegistry.h"

ovRegistry::ovRegistry(ovHKeyType root) : m_root(root), m_look_in_wow64_area(0) {}

ovRegistry::~ovRegistry() = default;

void ovRegistry::set_look_in_wow64_area(int flag) {
    m_look_in_wow64_area = flag;
}

ovRegistry6432::ovRegistry6432(ovHKeyType root) : ovRegistry(root) {}
