// SPDX-License-Identifier: Apache-2.0
#include <Orvane/Common/Container.h>
#include <Orvane/GoogleTest.h>

#include <gmock/gmock.h>

#include <any>
#include <latch>
#include <memory>
#include <set>
#include <stdexcept>
#include <string>
#include <thread>
#include <vector>

namespace orvane {
namespace {

using Arguments = Container::Arguments;

struct Greeter {
  virtual ~Greeter() = default;
  [[nodiscard]] virtual std::string greet() const = 0;
};
struct Padding {
  virtual ~Padding() = default;
  int padding = 0;
};
// The interface is not the first base: its address differs from the object's.
struct Says final : Padding, Greeter {
  explicit Says(std::string says) : text(std::move(says)) {}
  [[nodiscard]] std::string greet() const override { return text; }
  std::string text;
};

auto saying(std::string text) { return std::make_shared<Says>(std::move(text)); }

TEST(ContainerTest, looksInItselfThenInItsParent) {
  const auto parent = std::make_shared<Container>();
  Container child(parent);
  EXPECT_EQ(child.find<Greeter>(), nullptr);
  EXPECT_THROW((void)child.inject<Greeter>(), NotRegistered);
  parent->register_<Greeter>(saying("parent"));
  EXPECT_EQ(child.inject<Greeter>()->greet(), "parent");
  child.register_<Greeter>(saying("child"));
  EXPECT_EQ(child.inject<Greeter>()->greet(), "child");
  EXPECT_EQ(parent->inject<Greeter>()->greet(), "parent");
  child.register_<Greeter>(saying("new"));
  EXPECT_EQ(child.inject<Greeter>()->greet(), "new");
}

TEST(ContainerTest, namesWhatIsNotRegistered) {
  try {
    (void)Container().inject<Greeter>();
    FAIL();
  } catch (const NotRegistered& error) {
    EXPECT_THAT(error.what(), testing::HasSubstr("nothing is registered for"));
    EXPECT_THAT(error.what(), testing::HasSubstr("Greeter"));
  }
}

TEST(ContainerTest, erasesAfterTheCastToTheInterface) {
  Container container;
  const auto value = saying("hello");
  container.register_<Greeter>(value);
  EXPECT_EQ(container.inject<Greeter>(), value);
  container.register_<Greeter>([](Container&, const Arguments&) { return saying("factory"); });
  EXPECT_EQ(container.inject<Greeter>()->greet(), "factory");
  container.register_<Greeter>([] { return saying("deferred"); });
  EXPECT_EQ(container.inject<Greeter>()->greet(), "deferred");
}

TEST(ContainerTest, givesAFactoryTheContainerThatWasAskedAndTheArguments) {
  const auto parent = std::make_shared<Container>();
  Container child(parent);
  child.register_<std::string>(std::make_shared<std::string>("child's"));
  parent->register_<Greeter>([](Container& asked, const Arguments& arguments) {
    // A factory may inject, and register, without stopping itself.
    asked.register_<int>(std::make_shared<int>(1));
    return saying(*asked.inject<std::string>() + std::any_cast<std::string>(arguments.at(0)));
  });
  EXPECT_EQ(child.inject<Greeter>({std::string(" own")})->greet(), "child's own");
  EXPECT_NE(child.inject<Greeter>({std::string()}), child.inject<Greeter>({std::string()}));
  EXPECT_EQ(*child.inject<int>(), 1);
  EXPECT_THROW((void)parent->inject<Greeter>({std::string()}), NotRegistered);
  EXPECT_THROW((void)child.inject<Greeter>(), std::out_of_range);
}

TEST(ContainerTest, makesADeferredValueOnce) {
  Container container;
  int made = 0;
  container.register_<Greeter>([&] { return saying(std::to_string(++made)); });
  EXPECT_EQ(made, 0);
  std::vector<std::thread> threads;
  std::vector<std::shared_ptr<Greeter>> injected(8);
  std::latch start(8);
  for (auto& slot : injected) {
    threads.emplace_back([&] {
      start.arrive_and_wait();
      slot = container.inject<Greeter>();
    });
  }
  for (std::thread& thread : threads) thread.join();
  EXPECT_EQ(made, 1);
  EXPECT_EQ(std::set(injected.begin(), injected.end()).size(), 1U);
}

TEST(ContainerTest, triesADeferredValueAgainThatThrew) {
  Container container;
  int tries = 0;
  container.register_<Greeter>([&] {
    if (++tries == 1) throw std::runtime_error("not yet");
    return saying("at last");
  });
  EXPECT_THROW((void)container.inject<Greeter>(), std::runtime_error);
  EXPECT_EQ(container.inject<Greeter>()->greet(), "at last");
  EXPECT_EQ(container.inject<Greeter>()->greet(), "at last");
  EXPECT_EQ(tries, 2);
}

TEST(ContainerTest, canBePutBack) {
  Container container;
  container.register_<Greeter>(saying("before"));
  auto before = container.registrations();
  container.register_<Greeter>(saying("meanwhile"));
  container.register_<int>(std::make_shared<int>(1));
  container.restore(std::move(before));
  EXPECT_EQ(container.inject<Greeter>()->greet(), "before");
  EXPECT_EQ(container.find<int>(), nullptr);
}

}  // namespace
}  // namespace orvane
