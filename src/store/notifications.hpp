#ifndef VELDRA_STORE_NOTIFICATIONS_HPP
#define VELDRA_STORE_NOTIFICATIONS_HPP

#include <veldra/library.hpp>

#include <memory>

namespace veldra {

/// One public operation, as the reactor is told of it: at its end, also when it failed, each kind
/// that it changed is notified once, and then the library. Operations within it tell nothing of
/// their own. The library stays open for as long, whatever the reactor lets go.
class Notifications {
 public:
  explicit Notifications(Library& library);
  Notifications(const Notifications&) = delete;
  Notifications& operator=(const Notifications&) = delete;

  /// Ends a failed operation: what the reactor throws now would hide why it failed.
  ~Notifications();

  /// Ends a successful operation; what the reactor throws reaches the host.
  void deliver();

 private:
  std::shared_ptr<Library> keep_;
  Library& library_;
  bool delivered_ = false;
};

}  // namespace veldra

#endif
