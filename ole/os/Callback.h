#pragma once

#include <functional>
#include <utility>

#include "ole/Ox/OxObject.h"

/// A counted thing to be called with one argument.
template <class Result, class Argument>
class iCallbackBase : public virtual iObject {
public:
    virtual Result execute(Argument const& argument) = 0;
};

namespace Ox {

/// Wraps any callable as a counted callback.
template <class Result, class Argument>
class FunctionCallback : public iCallbackBase<Result, Argument> {
public:
    explicit FunctionCallback(std::function<Result(Argument const&)> function)
        : function_(std::move(function)) {}
    Result execute(Argument const& argument) override { return function_(argument); }

private:
    std::function<Result(Argument const&)> function_;
};

/// Holding it keeps a subscription alive; letting it go ends the subscription. Once the last pointer
/// has gone, the callback isn't called any more and no call of it is under way on another thread.
class Guard : public virtual iObject {};

}  // namespace Ox
