#include "virtual_instrument/transport/standard_input.h"

#include <windows.h>

#include <array>
#include <memory>
#include <mutex>
#include <thread>
#include <utility>
#include <vector>

namespace kvxvirtual
{
namespace
{

/// What the reading thread leaves its message in. The thread outlives the context when the input does not end.
class Post
{
public:
    Post(asio::io_context& context, std::function<void()> action) : context_(&context), action_(std::move(action)) {}

    void send()
    {
        const std::lock_guard guard(mutex_);
        if (context_ != nullptr)
            asio::post(*context_, std::move(action_));
        context_ = nullptr;
    }

    void close()
    {
        const std::lock_guard guard(mutex_);
        context_ = nullptr;
    }

private:
    std::mutex mutex_;
    asio::io_context* context_;
    std::function<void()> action_;
};

/// Lives as long as the context, and closes the posts with it.
class Posts : public asio::execution_context::service
{
public:
    using key_type = Posts;
    static inline asio::execution_context::id id;

    explicit Posts(asio::execution_context& context) : service(context) {}

    void add(std::shared_ptr<Post> post) { posts_.push_back(std::move(post)); }

private:
    void shutdown() override
    {
        for (const auto& post : posts_)
            post->close();
    }

    std::vector<std::shared_ptr<Post>> posts_;
};

/// A console, a pipe and a file alike: none of them can be waited for without reading.
void drain(HANDLE input)
{
    std::array<char, 4096> dropped{};
    DWORD count = 0;
    do {
        if (ReadFile(input, dropped.data(), static_cast<DWORD>(dropped.size()), &count, nullptr) == 0)
            return;
    } while (count > 0);
}

} // namespace

void whenStandardInputEnds(asio::io_context& context, std::function<void()> action)
{
    const auto post = std::make_shared<Post>(context, std::move(action));
    asio::use_service<Posts>(context).add(post);
    std::thread([post, input = GetStdHandle(STD_INPUT_HANDLE)] {
        drain(input);
        post->send();
    }).detach();
}

} // namespace kvxvirtual
