// A client's function for the reference intensity of live volumes.
#pragma once

namespace oct {

class RefIntensityFunctor {
 public:
  virtual ~RefIntensityFunctor() = default;
  virtual void operator()(double intensity) = 0;
};

class RefIntensityCallback : public RefIntensityFunctor {
 public:
  using Function = void (*)(double intensity);
  explicit RefIntensityCallback(Function function) : function_(function) {}
  void operator()(double intensity) override { function_(intensity); }

 private:
  const Function function_;
};

}  // namespace oct
