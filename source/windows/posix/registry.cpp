// No registry here: every operation gives its failure answer, so portable code that
// asks for a key simply finds none.
#include "ovra/ovRegistry.h"

namespace {
constexpr long kNoView = 1010; // ERROR_BADKEY, what Windows code expects for a missing view
}

int ovRegistry::has_wow64() {
    return 0;
}

int ovRegistry::key_exists(const utString&) const {
    return 0;
}
int ovRegistry::key_exists(const utString&, int) const {
    return 0;
}
int ovRegistry::value_exists(const utString&, const utString&, ovValueType&) const {
    return 0;
}
int ovRegistry::value_exists(const utString&, const utString&, ovValueType&, int) const {
    return 0;
}
ovValueType ovRegistry::value_type(const utString&, const utString&) {
    return ovREG_OTHER;
}
int ovRegistry::value_data(const utString&, const utString&, int&) const {
    return 0;
}
int ovRegistry::value_data(const utString&, const utString&, utString&) const {
    return 0;
}
int ovRegistry::set_value_data(const utString&, const utString&, ovValueType, const utString&) {
    return 0;
}
int ovRegistry::create_key(const utString&) {
    return 0;
}
int ovRegistry::remove_key(const utString&) {
    return 0;
}
int ovRegistry::remove_value(const utString&, const utString&) {
    return 0;
}
utStringcoPageArr* ovRegistry::key_list(const utString&) const {
    return nullptr;
}
utStringcoPageArr* ovRegistry::value_list(const utString&) const {
    return nullptr;
}
int ovRegistry::value_data_utf8(const utString&, const utString&, utString&) const {
    return 0;
}

int ovRegistry6432::key_exists(const utString&) const {
    return 0;
}
int ovRegistry6432::value_exists(const utString&, const utString&, ovValueType&) const {
    return 0;
}
utStringcoPageArr* ovRegistry6432::key_list(const utString&) const {
    return nullptr;
}
int ovRegistry6432::value_data_utf8(const utString&, const utString&, utString&) const {
    return 0;
}
int ovRegistry6432::key_exists_64(const utString&) const {
    return 0;
}
int ovRegistry6432::create_key_32(const utString&) {
    return 0;
}
int ovRegistry6432::create_key_64(const utString&) {
    return 0;
}
int ovRegistry6432::remove_key_32(const utString&) {
    return 0;
}
int ovRegistry6432::remove_key_64(const utString&) {
    return 0;
}

ovHKey ov_reg_master_key(ovHKeyType) {
    return nullptr;
}
long ov_reg_RegOpenKeyEx(ovHKey, const utString&, unsigned long, unsigned long, ovHKey* result,
                         int) {
    if (result)
        *result = nullptr;
    return kNoView;
}
long ov_reg_RegOpenKeyEx64(ovHKey, const utString&, unsigned long, unsigned long, ovHKey* result) {
    if (result)
        *result = nullptr;
    return kNoView;
}
long ov_reg_RegOpenKeyEx32(ovHKey, const utString&, unsigned long, unsigned long, ovHKey* result) {
    if (result)
        *result = nullptr;
    return kNoView;
}
long ov_reg_RegDeleteKeyEx(ovHKey, const utString&, unsigned long) {
    return kNoView;
}
