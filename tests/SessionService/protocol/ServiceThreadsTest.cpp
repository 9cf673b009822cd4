// Many clients at once. The thread sanitizer runs this, too.
#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <atomic>
#include <chrono>
#include <string>
#include <thread>
#include <vector>

#include "SessionService/protocol/ServiceCase.h"

namespace tarn::service {
namespace {

class ServiceThreads : public ServiceCase {};

TEST_F(ServiceThreads, OfAllEditsForOneRevisionExactlyOneIsMade) {
  std::string const plant = openPlant();
  constexpr int clients = 8;
  constexpr std::size_t rounds = 20;
  std::atomic<int> made{0};
  auto const stream = service_->subscribe();
  std::vector<std::thread> threads;
  for (int client = 0; client < clients; ++client) {
    threads.emplace_back([&, client] {
      for (std::size_t revision = 0; revision < rounds;) {
        Json const request = {{"jsonrpc", "2.0"},
                              {"id", client},
                              {"method", "edit"},
                              {"params",
                               {{"document", plant},
                                {"revision", revision},
                                {"edits", list({set("/Plant", "Title", std::to_string(client))})}}}};
        Json const answer = Json::parse(service_->answer(request.dump()));
        if (answer.contains("result")) {
          ++made;
          revision = answer.at("result").at("revision");
        } else {
          revision = answer.at("error").at("data").at("revision");
        }
        service_->sync();
      }
    });
  }
  for (std::thread& thread : threads) thread.join();
  EXPECT_EQ(call("state", {{"document", plant}}).at("revision"), made.load());
  for (int revision = 1; revision <= made; ++revision) {
    auto const event = stream->next(std::chrono::seconds(5));
    ASSERT_NE(event, nullptr);
    ASSERT_EQ(Json::parse(*event).at("params").at("revision"), revision);
  }
}

TEST_F(ServiceThreads, AReviewBesideEditsSaysWhatIsWrongAtItsRevision) {
  std::string const plant = openPlant();
  std::atomic<bool> isOver{false};
  std::atomic<int> wrong{0};
  auto const ask = [&](std::string const& method, Json params) {
    params["document"] = plant;
    Json const request = {{"jsonrpc", "2.0"}, {"id", 1}, {"method", method}, {"params", std::move(params)}};
    return Json::parse(service_->answer(request.dump())).at("result");
  };
  std::vector<std::thread> readers;
  for (int reader = 0; reader < 4; ++reader) {
    readers.emplace_back([&, reader] {
      while (!isOver) {
        Json const answer = reader % 2 == 0 ? ask("review", Json::object())
                                            : ask("children", {{"path", "/Plant"}, {"findings", true}, {"limit", 1}});
        // The height is below its bound at the odd revisions.
        int const errors = (reader % 2 == 0 ? answer : answer.at("list").at(0)).at("errors");
        if (errors != answer.at("revision").get<int>() % 2) ++wrong;
      }
    });
  }
  for (int revision = 0; revision < 60; ++revision) {
    std::string const height = revision % 2 == 0 ? "-3 [m]" : "3 [m]";
    ask("edit", {{"revision", revision}, {"edits", list({set("/Plant/Tank:a", "Height", height)})}});
  }
  isOver = true;
  for (std::thread& reader : readers) reader.join();
  EXPECT_EQ(wrong, 0);
  EXPECT_EQ(ask("review", Json::object()).at("errors"), 0);
}

TEST_F(ServiceThreads, DocumentsAreOpenedUsedAndClosedSideBySide) {
  constexpr int clients = 6;
  std::atomic<int> failures{0};
  std::vector<std::thread> threads;
  for (int client = 0; client < clients; ++client) {
    threads.emplace_back([&] {
      auto const ask = [&](std::string const& method, Json const& params) {
        Json const request = {{"jsonrpc", "2.0"}, {"id", 1}, {"method", method}, {"params", params}};
        Json answer = Json::parse(service_->answer(request.dump()));
        if (!answer.contains("result")) ++failures;
        return answer.value("result", Json::object());
      };
      for (int round = 0; round < 5; ++round) {
        Json const opened = ask("open", {{"text", "/Plant/Title = x\n"}});
        ask("form", {{"document", opened.at("document")}, {"path", "/Plant"}, {"findings", true}});
        ask("documents", Json::object());
        ask("close", {{"document", opened.at("document")}});
      }
    });
  }
  for (std::thread& thread : threads) thread.join();
  EXPECT_EQ(failures, 0);
}

}  // namespace
}  // namespace tarn::service
