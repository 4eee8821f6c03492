// A post with two pictures: ask for an upload URL each, upload, then create the post. One picture comes from memory and
// one from a file; the upload of the latter draws a progress bar, is cancelled half-way and done again.

#include <zvapikit/core/Context.hpp>
#include <zvapikit/core/FirebaseAuthentifier.hpp>
#include <zvapikit/core/MobileApiClient.hpp>
#include <zvapikit/domains/ContentDomain.hpp>
#include <zvapikit/domains/UploadDomain.hpp>
#include <zvapikit/emulator/EmulatorThread.hpp>
#include <zvapikit/keychain/InMemoryKeychain.hpp>

#include <boost/asio/bind_cancellation_slot.hpp>
#include <boost/asio/cancellation_signal.hpp>
#include <boost/asio/co_spawn.hpp>
#include <boost/asio/error.hpp>
#include <boost/asio/io_context.hpp>
#include <boost/asio/this_coro.hpp>
#include <boost/asio/use_awaitable.hpp>
#include <boost/system/system_error.hpp>

#include <algorithm>
#include <fstream>
#include <iostream>
#include <stdexcept>

namespace asio = boost::asio;

namespace {

class Firebase : public ZAK::FirebaseAuthentifier {
 public:
  asio::awaitable<std::string> idToken() override { co_return "firebase-alice"; }
  void signOut() noexcept override {}
};

// Any bytes serve here: the emulator does not look at the picture. A camera gives JPEG files of about this size.
std::string picture() { return "\xff\xd8" + std::string(3'000'000, 'x') + "\xff\xd9"; }

// Called while bytes go out, and for the last one, on the executor of the call that uploads.
void drawBar(std::uint64_t done, std::optional<std::uint64_t> total) {
  const std::uint64_t percent = 100 * done / std::max<std::uint64_t>(total.value_or(done), 1);
  const std::string bar(percent / 5, '#');
  std::cout << "\r[" << bar << std::string(20 - bar.size(), ' ') << "] " << percent << " %" << std::flush;
}

// An upload that somebody may cancel: a coroutine of its own with the slot of a signal. False when it was cancelled.
asio::awaitable<bool> uploadUnless(std::shared_ptr<asio::cancellation_signal> cancel, asio::awaitable<void> upload) {
  const auto executor = co_await asio::this_coro::executor;
  bool done = true;
  try {
    co_await asio::co_spawn(executor, std::move(upload),
                            asio::bind_cancellation_slot(cancel->slot(), asio::use_awaitable));
  } catch (const boost::system::system_error& error) {
    if (error.code() != asio::error::operation_aborted) throw;
    done = false;
  }
  co_return done;
}

asio::awaitable<void> post(std::shared_ptr<ZAK::MobileApiClient> client, std::filesystem::path selfie) {
  ZAK::UploadDomain uploads{client};
  ZAK::ContentDomain content{client};

  // One URL a picture, one as good as the other. They are secrets: whoever has one may upload.
  const auto urls = co_await uploads.askPostUploadUrls();
  const ZAK::UploadUrlDto& back = urls.data.at(0);
  const ZAK::UploadUrlDto& front = urls.data.at(1);

  co_await uploads.upload(picture(), back);
  std::cout << "uploaded the back camera's picture from memory\n";

  // The user taps "cancel" when half of the file has gone out.
  const auto cancel = std::make_shared<asio::cancellation_signal>();
  const auto impatient = [cancel](std::uint64_t done, std::optional<std::uint64_t> total) {
    drawBar(done, total);
    if (done >= total.value() / 2) cancel->emit(asio::cancellation_type::terminal);
  };
  bool done = co_await uploadUnless(cancel, uploads.uploadFile(selfie, front, impatient));
  if (done) throw std::runtime_error("an upload that was cancelled went through");
  std::cout << "\ncancelled the front camera's picture\n";

  // After a cancellation, as after any failure, the URL stays good until its `expireAt`.
  done = co_await uploadUnless(cancel, uploads.uploadFile(selfie, front, &drawBar));
  if (!done) throw std::runtime_error("nobody cancelled the second upload");
  std::cout << "\nuploaded the front camera's picture from a file\n";

  // The post names the pictures by their place in the bucket, with their size in pixels.
  ZAK::CreatePostDto draft;
  draft.takenAt = std::chrono::floor<std::chrono::microseconds>(std::chrono::system_clock::now());
  draft.backCamera = back.picture(1500, 2000);
  draft.frontCamera = front.picture(1500, 2000);
  draft.visibility = {ZAK::PostVisibilityDto::friends};
  const ZAK::PostDto created = co_await content.createMyPost(draft);
  std::cout << "posted " << created.id << " of " << created.user.username << "\n";
}

}  // namespace

int main() {
  ZAK::EmulatorThread backend;
  const auto selfie = std::filesystem::temp_directory_path() / "zvapikit-example-selfie.jpg";
  std::ofstream(selfie, std::ios::binary) << picture();

  asio::io_context io;
  const auto firebase = std::make_shared<Firebase>();
  const auto client = ZAK::MobileApiClient::create({
      .configuration = {ZAK::Configuration::Environment::sandbox},
      .authentifier = firebase,
      .executor = io.get_executor(),
      .transport = backend->transportOptions(),
      .keychain = std::make_shared<ZAK::InMemoryKeychain>(),
  });
  asio::co_spawn(io, post(client, selfie), [](std::exception_ptr failure) {
    if (failure) std::rethrow_exception(failure);
  });
  io.run();
  std::filesystem::remove(selfie);
}
