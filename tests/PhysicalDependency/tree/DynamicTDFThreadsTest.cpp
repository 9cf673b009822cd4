// Several threads read one tree at once.

#include <tarn/DynamicTDF.h>

#include <gtest/gtest.h>

#include <atomic>
#include <string>
#include <thread>
#include <vector>

namespace tarn {
namespace {

std::string domain(int number) {
  return "/Case/Domain:" + std::to_string(number);
}

TEST(DynamicTDFThreads, EachOfSeveralReadersSeesAllObjectsAndValues) {
  constexpr int domains = 200;
  DynamicTDF tree(false);
  for (int i = 0; i < domains; ++i) {
    tree.setParameter(domain(i), "Fluids", "Water," + std::to_string(i));
    tree.setParameter(domain(i) + "/Heat", "Heated", "yes");
  }
  DynamicTDF const& model = tree;

  std::atomic<int> wrong = 0;
  auto const read = [&](int first) {
    std::vector<std::string> list;
    for (int i = 0; i < 5 * domains; ++i) {
      int const number = (first + i) % domains;
      std::string const path = domain(number);
      bool const isRight = model.hasObject(path) && !model.hasObject(path + "/Turbulence") &&
                           model.getParameterValue(path, "Fluids") == "Water," + std::to_string(number) &&
                           model.getParamValueAsList(path, "Fluids", list) && list.size() == 2 &&
                           model.getChildObjectPaths(path, list) && list.front() == path + "/Heat" &&
                           model.getObjectName(path) == std::to_string(number);
      if (!isRight) ++wrong;
    }
  };
  std::vector<std::thread> readers;
  for (int i = 0; i < 4; ++i) readers.emplace_back(read, 50 * i);
  for (std::thread& reader : readers) reader.join();
  EXPECT_EQ(wrong, 0);
}

}  // namespace
}  // namespace tarn
