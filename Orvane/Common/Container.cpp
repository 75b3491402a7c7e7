// SPDX-License-Identifier: Apache-2.0
#include <Orvane/Common/Container.h>

#include <cxxabi.h>

#include <algorithm>
#include <cstdlib>

namespace orvane {
namespace {

std::string readableName(const std::type_info& type) {
  int status = 0;
  const std::unique_ptr<char, decltype(&std::free)> name(
      abi::__cxa_demangle(type.name(), nullptr, nullptr, &status), &std::free);
  return name ? name.get() : type.name();
}

template <class Registrations>
auto registeredIn(Registrations& registrations, std::type_index type) {
  return std::find_if(registrations.begin(), registrations.end(),
                      [type](const auto& each) { return each.type == type; });
}

}  // namespace

NotRegistered::NotRegistered(const std::type_info& type)
    : message_("nothing is registered for " + readableName(type)) {}
NotRegistered::~NotRegistered() = default;

const std::shared_ptr<Container>& Container::common() {
  // Never destroyed: services may still be built while the process ends.
  static const auto& container = *new std::shared_ptr<Container>(std::make_shared<Container>());
  return container;
}

Container::Container(std::shared_ptr<Container> parent) : parent_(std::move(parent)) {}
Container::~Container() = default;

void Container::throwNotRegistered(const std::type_info& type) { throw NotRegistered(type); }

void Container::add(std::type_index type, std::shared_ptr<const Factory> factory) {
  const std::scoped_lock lock(mutex_);
  const auto former = registeredIn(factories_, type);
  if (former == factories_.end()) {
    factories_.push_back({type, std::move(factory)});
  } else {
    former->factory.swap(factory);
  }
}

Container::Registrations Container::registrations() const {
  Registrations registrations;
  const std::scoped_lock lock(mutex_);
  registrations.factories_ = factories_;
  return registrations;
}

void Container::restore(Registrations registrations) {
  const std::scoped_lock lock(mutex_);
  factories_.swap(registrations.factories_);
}

std::shared_ptr<const Container::Factory> Container::factoryOf(std::type_index type) const {
  {
    const std::scoped_lock lock(mutex_);
    const auto found = registeredIn(factories_, type);
    if (found != factories_.end()) return found->factory;
  }
  return parent_ ? parent_->factoryOf(type) : nullptr;
}

std::shared_ptr<void> Container::make(std::type_index type, const Arguments& arguments) {
  const std::shared_ptr<const Factory> factory = factoryOf(type);
  return factory ? factory->make(*this, arguments) : nullptr;
}

}  // namespace orvane
