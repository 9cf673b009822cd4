#pragma once

#include <string>
#include <utility>

#include <tarn/PhysicsData.h>
#include <tarn/service/Service.h>

#include "documents/Documents.h"
#include "documents/EventHub.h"

namespace tarn::service {

/// The objects that the methods of the protocol work with.
struct Host {
  Host(PhysicsData const& rules, ServiceOptions given)
      : options(std::move(given)),
        documents(rules, options),
        events(options.limits.streams, options.limits.waitingEvents) {}

  ServiceOptions const options;
  Documents documents;
  EventHub events;
};

}  // namespace tarn::service
