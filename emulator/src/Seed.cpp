#include "Seed.hpp"

#include "World.hpp"

#include <algorithm>

namespace ZAK {

namespace {

using namespace std::chrono_literals;

struct Neighbour {
  const char* id;
  const char* username;
  const char* fullname;
  const char* phoneNumber;
  const char* region;
  const char* biography;
  const char* caption;    ///< of the post of the moment; null: has not posted
  bool isPublic = false;  ///< whether that post is open to all
};

struct Link {
  const char* from;
  const char* to;
};

struct Reaction {
  const char* author;  ///< of the post
  const char* userId;
  const char* text;
};

// The telephone numbers lie in ranges that are kept free for fiction.
constexpr Neighbour neighbours[] = {
    {"frida", "frida", "Frida Falk", "+447700900111", "europe-west", "Coffee first.", "Third cup, still Monday"},
    {"gus", "gus_g", "Gus Gallagher", "+447700900112", "europe-west", "Goalkeeper, sometimes.", "Rain stopped play"},
    {"hana", "hana.h", "Hana Horáková", "+447700900113", "europe-west", "", "Library, fourth floor"},
    {"ivan", "ivan", "Ivan Ilić", "+447700900114", "europe-west", "Bikes and bread.", nullptr},
    {"jade", "jadejade", "Jade Jones", "+12025550115", "us-central", "NYC → Paris", "Laundry day again"},
    {"kofi", "kofi.k", "Kofi Kwarteng", "+447700900116", "africa", "", "The new kitchen!"},
    {"lena", "lena", "Lena Lindqvist", "+33639980117", "europe-west", "Choir, chess, cheese.", nullptr},
    {"malik", "malik_m", "Malik Mansour", "+33639980118", "europe-west", "", "Métro, boulot, photo"},
    {"nora", "nora", "Nora Nilsen", "+33639980119", "europe-west", "Always early.", nullptr},
    {"omar", "omar", "Omar Ortiz", "+12025550120", "us-central", "", "Two minutes before the bus", true},
    {"pia", "pia.p", "Pia Petersen", "+33639980121", "europe-west", "Plants: 43.", nullptr},
    {"quinn", "quinn", "Quinn O'Quigley", "+12025550122", "us-central", "", "Late, but with cake", true},
    {"rosa", "rosa", "Rosa Ricci", "+33639980123", "europe-west", "Sea person.", nullptr},
    {"sven", "sven", "Sven Svensson", "+33639980124", "europe-west", "", nullptr},
    {"tara", "tara", "Tara Thapa", "+12025550125", "asia-west", "Mountains.", nullptr},
    {"yuki", "yuki", "Yuki Yamada", "+12025550126", "asia-east", "", "Last train home", true},
};

constexpr Link friendships[] = {
    {"frida", "bob"},  {"frida", "carol"}, {"frida", "gus"}, {"frida", "hana"}, {"gus", "bob"},     {"gus", "jade"},
    {"hana", "carol"}, {"hana", "yuki"},   {"ivan", "dave"}, {"ivan", "lena"},  {"jade", "bob"},    {"jade", "kofi"},
    {"kofi", "malik"}, {"lena", "dave"},   {"lena", "sven"}, {"malik", "nora"}, {"malik", "carol"}, {"nora", "carol"},
    {"omar", "tara"},  {"omar", "pia"},    {"pia", "quinn"}, {"quinn", "rosa"}, {"rosa", "dave"},
};

constexpr Link requests[] = {
    {"nora", "alice"}, {"omar", "alice"}, {"alice", "sven"}, {"ivan", "bob"}, {"tara", "frida"}, {"yuki", "gus"},
};

constexpr Reaction comments[] = {
    {"frida", "bob", "Save one for me"},
    {"frida", "gus", "That is a bucket, not a cup"},
    {"gus", "jade", "Again?"},
    {"jade", "kofi", "Same here"},
    {"kofi", "malik", "When is the party?"},
    {"malik", "carol", "Line 13, isn't it"},
    {"quinn", "rosa", "What kind of cake?"},
};

constexpr Reaction reactions[] = {
    {"frida", "carol", "😍"}, {"frida", "hana", "😂"}, {"hana", "yuki", "👍"},
    {"jade", "bob", "😂"},    {"malik", "nora", "😲"}, {"omar", "tara", "😃"},
};

void addPost(World& world, const std::string& userId, std::string caption, Date takenAt) {
  const std::string folder = "Photos/" + userId + "/post/";
  const std::string bucket = bucketName(world.environment);
  Post post;
  post.id = "post-" + userId;
  post.userId = userId;
  post.momentId = World::moment(takenAt).id;
  post.visibility = {"friends", "friends-of-friends"};
  post.caption = std::move(caption);
  post.primary = {bucket, folder + "back.jpg", 1500, 2000};
  post.secondary = {bucket, folder + "front.jpg", 1500, 2000};
  post.takenAt = post.createdAt = takenAt;
  world.posts[post.id] = std::move(post);
}

void addNeighbours(World& world, Date now) {
  const std::string bucket = bucketName(world.environment);
  auto age = 24h * 30;
  for (const Neighbour& neighbour : neighbours) {
    const std::string id = neighbour.id;
    const auto [entry, added] = world.users.try_emplace(id, User{id, neighbour.username, neighbour.fullname});
    if (!added) continue;
    User& user = entry->second;
    user.phoneNumber = neighbour.phoneNumber;
    user.region = neighbour.region;
    user.biography = neighbour.biography;
    user.profilePicture = Picture{bucket, "Photos/" + id + "/profile/picture.jpg", 1000, 1000};
    user.createdAt = now - (age += 24h * 11);
    if (neighbour.caption) addPost(world, id, neighbour.caption, now);
    if (neighbour.isPublic) world.posts.at("post-" + id).visibility = {"public"};
  }
}

void addLinks(World& world, Date now) {
  // The users of the options need not be the usual ones.
  const auto holdsBoth = [&](const Link& link) {
    return world.users.contains(link.from) && world.users.contains(link.to);
  };
  auto age = 24h * 7;
  for (const Link& link : friendships) {
    if (holdsBoth(link)) world.makeFriends(link.from, link.to, now - (age += 24h));
  }
  age = 0h;
  for (const Link& link : requests) {
    if (holdsBoth(link)) world.requestFriendship(link.from, link.to, now - (age += 3h));
  }
}

void addReactions(World& world, Date now) {
  const auto postFor = [&](const Reaction& reaction) {
    const auto post = world.posts.find(std::string("post-") + reaction.author);
    return post == world.posts.end() || !world.users.contains(reaction.userId) ? nullptr : &post->second;
  };
  for (const Reaction& comment : comments) {
    Post* const post = postFor(comment);
    if (!post) continue;
    const std::string id = "comment-" + post->userId + "-" + std::to_string(post->comments.size() + 1);
    post->comments.push_back({id, comment.userId, comment.text, now});
  }
  for (const Reaction& reaction : reactions) {
    Post* const post = postFor(reaction);
    if (!post) continue;
    Picture selfie = world.selfie(reaction.userId, reaction.text);
    world.users.at(reaction.userId).quiblets.try_emplace(reaction.text, selfie);
    const std::string id = "quiblet-" + post->userId + "-" + std::to_string(post->quiblets.size() + 1);
    post->quiblets.push_back({id, reaction.userId, reaction.text, false, std::move(selfie), now});
  }
}

}  // namespace

void seed(World& world, const EmulatorOptions& options, Date now) {
  for (const EmulatorUser& given : options.users) {
    User& user = world.users[given.id] = User{given.id, given.username, given.fullname, given.phoneNumber};
    user.createdAt = now - 24h * 365;
    if (given.hasPosted) addPost(world, given.id, "Hello from " + given.id, now);
  }
  for (const auto& [a, b] : options.friendships) world.makeFriends(a, b, now - 24h * 100);
  if (!options.hasNeighbours) return;
  addNeighbours(world, now);
  addLinks(world, now);
  addReactions(world, now);
}

}  // namespace ZAK
