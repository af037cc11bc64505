#pragma once

#include "server/api_answers.h"
#include "server/behaviour.h"
#include "server/drive_queue.h"
#include "server/https_server.h"
#include "server/image_shelf.h"
#include "server/request_log.h"

#include <filesystem>
#include <mutex>
#include <optional>
#include <string>

namespace datacentre {

/// Everything that the https side serves: pages, questions, images, drive calls. Tests change it through its parts.
class Site {
  public:
    enum class Driving { off, on };

    Site(std::string pagePath, const std::filesystem::path& imageFolder, Driving driving);

    /// Called on the thread of each connection.
    [[nodiscard]] Delivery deliver(const ReceivedRequest& request);

    void replacePage(std::optional<std::string> html);
    [[nodiscard]] std::string lastToken() const;
    [[nodiscard]] const std::string& pagePath() const { return pagePath_; }
    [[nodiscard]] bool isDriving() const { return driving_ == Driving::on; }
    [[nodiscard]] const ImageShelf& images() const { return images_; }

    RequestLog& requests() { return requests_; }
    BehaviourTable& behaviours() { return behaviours_; }
    ApiAnswers& answers() { return answers_; }
    DriveQueue& drive() { return drive_; }

  private:
    [[nodiscard]] Answer normalAnswer(const ReceivedRequest& request);
    [[nodiscard]] Answer joinPage(const ReceivedRequest& request);
    [[nodiscard]] std::optional<Answer> asset(const std::string& path) const;
    [[nodiscard]] std::optional<Answer> image(const std::string& path) const;
    [[nodiscard]] Answer driveCall(const ReceivedRequest& request);

    std::string pagePath_; ///< with its leading slash
    Driving driving_;
    ImageShelf images_;
    RequestLog requests_;
    BehaviourTable behaviours_;
    ApiAnswers answers_;
    DriveQueue drive_;
    mutable std::mutex mutex_;
    std::optional<std::string> replacement_;
    std::string lastToken_;
};

} // namespace datacentre
