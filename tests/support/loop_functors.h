// Functors of a control loop made of lambdas.
#pragma once

#include <functional>
#include <memory>
#include <string>

#include "core/error_callback.h"
#include "hosting/functors.h"

namespace oct::test {

class LambdaFunctor : public AbstractFunctor {
 public:
  explicit LambdaFunctor(std::function<void()> body) : body_(std::move(body)) {}
  void operator()() override { body_(); }
  void set_enabled(bool) override {}

 private:
  std::function<void()> body_;
};

class LambdaRendering : public AbstractRenderingFunctor {
 public:
  explicit LambdaRendering(std::function<void(std::uint32_t)> body) : body_(std::move(body)) {}
  void operator()(std::uint32_t request) override { body_(request); }
  void set_enabled(bool) override {}

 private:
  std::function<void(std::uint32_t)> body_;
};

using ImageReadyBody =
    std::function<void(std::uint32_t index, std::uint32_t width, std::uint32_t height, void* surface)>;

class LambdaImageReady : public AbstractImageReady {
 public:
  explicit LambdaImageReady(ImageReadyBody body) : body_(std::move(body)) {}
  void operator()(std::uint32_t index, std::uint32_t width, std::uint32_t height, void* surface) override {
    body_(index, width, height, surface);
  }
  void set_enabled(bool) override {}

 private:
  ImageReadyBody body_;
};

class LambdaError : public AbstractErrorFunctor {
 public:
  explicit LambdaError(std::function<void(const std::string&)> body) : body_(std::move(body)) {}
  void operator()(const std::string& message) const override { body_(message); }

 private:
  std::function<void(const std::string&)> body_;
};

}  // namespace oct::test
