#include "core/System/DspArchive.h"

#include <istream>
#include <ostream>
#include <sstream>

#include "System/DspFileJSON.h"

DspArchive::DspArchive() : impl_(std::make_unique<DspFileJSON>()) {}

DspArchive::DspArchive(const std::string& json) : DspArchive() {
    std::istringstream stream(json);
    impl_->read(stream);
}

DspArchive::DspArchive(const DspArchive& other) : impl_(other.impl_->clone()) {}

DspArchive& DspArchive::operator=(const DspArchive& other) {
    if (this != &other) impl_ = other.impl_->clone();
    return *this;
}

DspArchive::~DspArchive() = default;

void DspArchive::read(std::istream& stream) {
    impl_->read(stream);
}
void DspArchive::write(std::ostream& stream) const {
    impl_->write(stream);
}
std::string DspArchive::toString() const {
    return impl_->toString();
}
void DspArchive::clear() {
    impl_->clear();
}
void DspArchive::rewind() {
    impl_->rewind();
}

void DspArchive::get(const std::string& key, std::string& value) const {
    impl_->get(key, value);
}
void DspArchive::get(const std::string& key, int& value) const {
    impl_->get(key, value);
}
void DspArchive::get(const std::string& key, float& value) const {
    impl_->get(key, value);
}
void DspArchive::get(const std::string& key, double& value) const {
    impl_->get(key, value);
}
void DspArchive::get(const std::string& key, bool& value) const {
    impl_->get(key, value);
}

const void* DspArchive::getRoot() const {
    return impl_->getRoot();
}
const void* DspArchive::getCursor() const {
    return impl_->getCursor();
}

void DspArchive::remove(const std::string& key) {
    impl_->remove(key);
}
void DspArchive::remove(int index) {
    impl_->remove(index);
}

void DspArchive::replace(int index, const DspArchive& archive) {
    impl_->replace(index, *archive.impl_);
}
void DspArchive::replace(const std::string& key, const DspArchive& archive) {
    impl_->replace(key, *archive.impl_);
}
void DspArchive::replace(const std::string& key, float value) {
    impl_->replace(key, value);
}
void DspArchive::replace(const std::string& key, int value) {
    impl_->replace(key, value);
}
void DspArchive::replace(const std::string& key, double value) {
    impl_->replace(key, value);
}
void DspArchive::replace(const std::string& key, bool value) {
    impl_->replace(key, value);
}
void DspArchive::replace(const std::string& key, const std::string& value) {
    impl_->replace(key, value);
}
void DspArchive::replace(const std::string& key, const char* value) {
    replace(key, std::string(value));
}

void DspArchive::set(const std::string& key, float value) {
    impl_->set(key, value);
}
void DspArchive::set(const std::string& key, int value) {
    impl_->set(key, value);
}
void DspArchive::set(const std::string& key, double value) {
    impl_->set(key, value);
}
void DspArchive::set(const std::string& key, bool value) {
    impl_->set(key, value);
}
void DspArchive::set(const std::string& key, const std::string& value) {
    impl_->set(key, value);
}
void DspArchive::set(const std::string& key, const char* value) {
    set(key, std::string(value));
}
void DspArchive::set(const std::string& key, const DspArchive& archive) {
    impl_->set(key, *archive.impl_);
}

bool DspArchive::enterObject(const std::string& key) {
    return impl_->enterObject(key);
}
void DspArchive::leaveObject() {
    impl_->leaveObject();
}
void DspArchive::beginObject(const std::string& key) {
    impl_->beginObject(key);
}
void DspArchive::endObject() {
    impl_->endObject();
}
void DspArchive::beginArray(const std::string& key) {
    impl_->beginArray(key);
}
void DspArchive::endArray() {
    impl_->endArray();
}

int DspArchive::getArraySize() const {
    return impl_->getArraySize();
}
bool DspArchive::enterArrayItem(int index) {
    return impl_->enterArrayItem(index);
}
void DspArchive::getArrayItem(int index, std::string& value) const {
    impl_->getArrayItem(index, value);
}
void DspArchive::getArrayItem(int index, float& value) const {
    impl_->getArrayItem(index, value);
}
void DspArchive::getArrayItem(int index, double& value) const {
    impl_->getArrayItem(index, value);
}
void DspArchive::getArrayItem(int index, bool& value) const {
    impl_->getArrayItem(index, value);
}
void DspArchive::getArrayItem(int index, int& value) const {
    impl_->getArrayItem(index, value);
}

bool DspArchive::isEmpty() const {
    return impl_->isEmpty();
}

std::istream& operator>>(std::istream& stream, DspArchive& archive) {
    archive.read(stream);
    return stream;
}

std::ostream& operator<<(std::ostream& stream, const DspArchive& archive) {
    archive.write(stream);
    return stream;
}
