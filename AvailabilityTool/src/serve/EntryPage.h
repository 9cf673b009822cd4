#pragma once

#include <string_view>

namespace tarn::tool {

/// The page of the printed address, which has the token behind "#". Browsers keep that part to themselves, so the token
/// is in no log of a server or a proxy. The script of the page exchanges the token for a cookie and goes on to the web
/// editor.
inline constexpr std::string_view entryPath = "/enter";
inline constexpr std::string_view entryScriptPath = "/enter.js";

inline constexpr std::string_view entryPage = R"html(<!doctype html>
<html lang="en">
<head>
<meta charset="utf-8">
<meta name="viewport" content="width=device-width">
<meta name="color-scheme" content="light dark">
<title>zev</title>
<link rel="icon" href="data:,">
<script src="/enter.js" defer></script>
</head>
<body>
<main>
<h1>zev</h1>
<p role="status">Open the address that zev has printed, with its token, in a browser that runs scripts.</p>
</main>
</body>
</html>
)html";

inline constexpr std::string_view entryScript = R"js("use strict";
(async () => {
  const token = new URLSearchParams(location.hash.slice(1)).get("token");
  if (!token) return;
  history.replaceState(null, "", location.pathname);
  let sentence;
  try {
    const answer = await fetch("/enter", { method: "POST", headers: { Authorization: "Bearer " + token } });
    if (answer.ok) return location.replace("/");
    sentence = "This token is not valid any more. A server has a new one after each start: open the address that it has printed last.";
  } catch {
    sentence = "The server does not answer. Start it again, and open the address that it prints.";
  }
  document.querySelector("[role=status]").textContent = sentence;
})();
)js";

}  // namespace tarn::tool
