// SPDX-License-Identifier: Apache-2.0
// The dependency container through which services find what they need.
#pragma once

#include <Orvane/Platform/Export.h>
#include <Orvane/Platform/TypeIdentity.h>

#include <any>
#include <exception>
#include <memory>
#include <mutex>
#include <string>
#include <type_traits>
#include <typeindex>
#include <utility>
#include <vector>

namespace orvane {

/// Thrown by `Container::inject` when nothing is registered for a type.
class ORVANE_EXPORT NotRegistered final : public std::exception {
 public:
  /// Names the type in `what()`.
  explicit NotRegistered(const std::type_info& type);
  ~NotRegistered() override;
  /// Which type nothing was registered for, as the compiler spells it.
  [[nodiscard]] const char* what() const noexcept override { return message_.c_str(); }

 private:
  std::string message_;
};

/// Maps interfaces to what implements them. A lookup that a container can't answer goes to its
/// parent. Any thread may use it; factories run without a lock held, so that they can inject.
class ORVANE_EXPORT Container {
 public:
  /// What a factory is given beside the container.
  using Arguments = std::vector<std::any>;

  /// The shared container: the host registers its implementations here.
  [[nodiscard]] static const std::shared_ptr<Container>& common();

  /// The registrations of a container at one moment.
  class Registrations;

  /// A container that asks `parent` for what it has not got; null for none.
  explicit Container(std::shared_ptr<Container> parent = nullptr);
  Container(const Container&) = delete;
  Container& operator=(const Container&) = delete;
  ~Container();

  /// Registers a factory, called for every injection with the container that was asked (which may
  /// be a child of this one) and the arguments; from several threads at once, where they inject at
  /// once. Replaces an earlier registration.
  template <class Interface, class Factory>
    requires(std::is_invocable_r_v<std::shared_ptr<Interface>, const Factory&, Container&,
                                   const Arguments&>)
  void register_(Factory factory) { add<Interface>(std::move(factory)); }

  /// Registers a deferred value: made when it is first injected, the same from then on; where
  /// making it throws, or gives null, the next injection tries again.
  template <class Interface, class Deferred>
    requires(std::is_invocable_r_v<std::shared_ptr<Interface>, const Deferred&>)
  void register_(Deferred value) {
    // Not std::call_once: after an exception it waits for ever on some platforms, and under
    // ThreadSanitizer on all.
    struct Once {
      std::mutex mutex;
      std::shared_ptr<Interface> made;
    };
    add<Interface>(
        [once = std::make_shared<Once>(), value = std::move(value)](Container&, const Arguments&) {
          const std::scoped_lock lock(once->mutex);
          if (!once->made) once->made = value();
          return once->made;
        });
  }

  /// Registers a value that is at hand.
  template <class Interface>
  void register_(std::shared_ptr<Interface> value) {
    add<Interface>([value = std::move(value)](Container&, const Arguments&) { return value; });
  }

  /// What is registered for `Interface`. Throws `NotRegistered` where nothing is, and whatever the
  /// factory throws.
  template <class Interface>
  [[nodiscard]] std::shared_ptr<Interface> inject(const Arguments& arguments = {}) {
    auto found = find<Interface>(arguments);
    if (!found) throwNotRegistered(typeid(Interface));
    return found;
  }

  /// The same, but null where nothing is registered.
  template <class Interface>
  [[nodiscard]] std::shared_ptr<Interface> find(const Arguments& arguments = {}) {
    return std::static_pointer_cast<Interface>(make(typeid(Interface), arguments));
  }

  /// What is registered here, the parent's not counted, to be put back by `restore`: for tests.
  [[nodiscard]] Registrations registrations() const;
  /// Replaces everything that is registered here.
  void restore(Registrations registrations);

 private:
  /// Not a std::function: <functional> costs every reader of this header more than the rest of it.
  class Factory {
   public:
    Factory() = default;
    Factory(const Factory&) = delete;
    Factory& operator=(const Factory&) = delete;
    virtual ~Factory() = default;
    [[nodiscard]] virtual std::shared_ptr<void> make(Container& container,
                                                     const Arguments& arguments) const = 0;
  };

  template <class Interface, class Make>
  class FactoryOf final : public Factory {
   public:
    explicit FactoryOf(Make make) : make_(std::move(make)) {}
    [[nodiscard]] std::shared_ptr<void> make(Container& container,
                                             const Arguments& arguments) const override {
      // Erased after the cast to the interface: the other way round the pointer would be wrong.
      return std::shared_ptr<Interface>(make_(container, arguments));
    }

   private:
    const Make make_;
  };

  struct Registration {
    std::type_index type;
    std::shared_ptr<const Factory> factory;
  };
  // Not a std::map: on ARM, libstdc++ 12 orders types of unnamed namespaces so that different ones
  // pass for the same (GCC bug 103240). They are few.
  using Factories = std::vector<Registration>;

  template <class Interface, class Make>
  void add(Make make) {
    add(typeid(Interface), std::make_shared<const FactoryOf<Interface, Make>>(std::move(make)));
  }

  // Not in the header, so that a program without exceptions can include it.
  [[noreturn]] static void throwNotRegistered(const std::type_info& type);
  void add(std::type_index type, std::shared_ptr<const Factory> factory);
  [[nodiscard]] std::shared_ptr<const Factory> factoryOf(std::type_index type) const;
  [[nodiscard]] std::shared_ptr<void> make(std::type_index type, const Arguments& arguments);

  const std::shared_ptr<Container> parent_;
  mutable std::mutex mutex_;
  Factories factories_;
};

/// What `Container::restore` takes.
class Container::Registrations {
  friend class Container;
  Factories factories_;
};

}  // namespace orvane
