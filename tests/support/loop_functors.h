// Functors of a control loop made of lambdas.
#pragma once

#include <functional>
#include <memory>
#include <string>

#include "core/error_callback.h"
#include "hosting/functors.h"

namespace oct::test {

template <class... Arguments>
class LambdaFunctor : public AbstractSwitchable<Arguments...> {
 public:
  explicit LambdaFunctor(std::function<void(Arguments...)> body) : body_(std::move(body)) {}
  void operator()(Arguments... arguments) override { body_(arguments...); }
  void set_enabled(bool) override {}

 private:
  const std::function<void(Arguments...)> body_;
};

using ImageReadyBody =
    std::function<void(std::uint32_t index, std::uint32_t width, std::uint32_t height, void* surface)>;

inline std::unique_ptr<AbstractFunctor> functor(std::function<void()> body) {
  return std::make_unique<LambdaFunctor<>>(std::move(body));
}

inline std::unique_ptr<AbstractRenderingFunctor> rendering(std::function<void(std::uint32_t id)> body) {
  return std::make_unique<LambdaFunctor<std::uint32_t>>(std::move(body));
}

inline std::unique_ptr<AbstractImageReady> imageReady(ImageReadyBody body) {
  return std::make_unique<LambdaFunctor<std::uint32_t, std::uint32_t, std::uint32_t, void*>>(std::move(body));
}

class LambdaError : public AbstractErrorFunctor {
 public:
  explicit LambdaError(std::function<void(const std::string&)> body) : body_(std::move(body)) {}
  void operator()(const std::string& message) const override { body_(message); }

 private:
  const std::function<void(const std::string&)> body_;
};

}  // namespace oct::test
