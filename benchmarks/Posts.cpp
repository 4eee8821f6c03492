#include "Posts.hpp"

#include "support/Samples.hpp"

#include <zvapikit/json/JSONDecoder.hpp>

#include <random>
#include <string>

namespace Bench {
namespace {

class PostMaker {
 public:
  ZAK::PostDto make() {
    ZAK::PostDto post = sample_;
    post.id = identifier();
    change(post.user);
    post.moment.id = identifier();
    post.primary = picture();
    post.secondary = picture();
    post.caption = text(12);
    if (number(0, 4) == 0) post.caption.reset();
    if (number(0, 2) == 0) post.location.reset();
    fill(post.quiblets->sample, number(0, 8));
    fill(post.comments->sample, number(0, 10));
    fill(post.screenshots->sample, number(0, 2));
    post.takenAt += std::chrono::milliseconds(number(0, 80'000'000));
    post.createdAt = post.takenAt + std::chrono::milliseconds(number(500, 9000));
    return post;
  }

 private:
  int number(int least, int most) { return least + int(engine_() % unsigned(most - least + 1)); }

  std::string identifier() {
    std::string text(28, ' ');
    for (char& c : text) c = "ABCDEFGHIJKLMNOPQRSTUVWXYZabcdefghijklmnopqrstuvwxyz0123456789-_"[number(0, 63)];
    return text;
  }

  std::string text(int words) {
    static const char* const some[] = {"sunset", "à la plage",  "coffee", "with the team", "😍🔥",  "late again",
                                       "home",   "\"finally\"", "день",   "so good",       "and", "Zürich"};
    std::string text = "ok";
    for (int i = number(0, words); i > 0; --i) text.append(" ").append(some[number(0, 11)]);
    return text;
  }

  ZAK::MediaDto picture() {
    ZAK::MediaDto media;
    media.url =
        *ZAK::URL::parse("https://cdn.zolvi.example/Photos/" + identifier() + "/post/" + identifier() + ".webp");
    media.width = number(0, 1) == 0 ? 1500 : 1000;
    media.height = number(0, 1) == 0 ? 2000 : 1000;
    return media;
  }

  void change(ZAK::PostPerson& person) {
    person.id = identifier();
    person.username = "user" + std::to_string(number(1, 999'999));
    person.profilePicture = picture();
    if (number(0, 5) == 0) person.profilePicture.reset();
  }

  void changeRest(ZAK::PostQuibletDto& quiblet) { quiblet.media = picture(); }
  void changeRest(ZAK::PostCommentDto& comment) { comment.content = text(20); }
  void changeRest(ZAK::PostScreenshotDto&) {}

  template <class Element>
  void fill(std::vector<Element>& elements, int count) {
    elements.resize(std::size_t(count), elements.front());
    for (Element& element : elements) {
      element.id = identifier();
      change(element.user);
      changeRest(element);
    }
  }

  const ZAK::PostDto sample_ = ZAK::JSONDecoder().decode<ZAK::PostDto>(ZAK::test::sample("PostDto").dump());
  std::minstd_rand engine_;
};

}  // namespace

std::vector<ZAK::PostDto> posts(int count) {
  PostMaker maker;
  std::vector<ZAK::PostDto> posts;
  for (int i = 0; i < count; ++i) posts.push_back(maker.make());
  return posts;
}

}  // namespace Bench
