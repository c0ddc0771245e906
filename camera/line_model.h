// What a line did not deliver: its silences, and the records that are missing between them. Records are not numbered;
// but a camera sends them at regular times, which show in the times of arrival in spite of late and lost records. Each
// record is given its number in that regular order, so the numbers that no record has are the lost ones. Pure; one
// thread at a time.
#pragma once

#include <cstddef>
#include <vector>

namespace camera {

// What the line can carry: 41 bytes of 10 bits take 10.7 ms at 38,400 baud.
inline constexpr double kMaxRecordRate = 38400 / 410.0;
// Accepted for the camera's rate: what the line carries, and 1 % for the tolerance of two clocks.
inline constexpr double kHighestRate = 94.6, kLowestRate = 2;

// No bytes from `from` to `to` seconds, for kGapSeconds or longer.
struct Silence {
  double from, to;
};

// Records that are missing between two arrivals.
struct Loss {
  double from, to;  // seconds: the records before and after
  int records;
};

enum class LossBasis {
  kTooFew,     // too few records for a figure
  kIrregular,  // records arrive too irregularly to count single losses
  kEstimated,  // by the rate that the times of arrival show
  kGiven,      // by the given rate
};

// The figures of a selection of time. Those of two adjacent selections add up to those of both (rates and the longest
// silence aside; a silence that is divided counts in both).
struct LineFigures {
  double seconds = 0;  // duration, including time without records at the edges
  long long records = 0;
  double recordsPerSecond = 0;  // records / seconds

  // Silence: pauses of kGapSeconds or more without a byte.
  long long silences = 0;
  double silentSeconds = 0, longestSilence = 0, longestSilenceFrom = 0;

  // Lost: records that are missing in shorter pauses or arrived malformed. For kTooFew and kIrregular only the bounds
  // are valid. Otherwise `lost` is the best figure, and can be slightly negative where arrival is irregular and a
  // selection short; show at least 0. The truth lies within the bounds if the camera sends at a regular rate.
  LossBasis basis = LossBasis::kTooFew;
  long long lost = 0, lostAtLeast = 0, lostAtMost = 0;
  double rate = 0;  // records per second that the camera sends; 0 = unknown
  // The line could carry a multiple of the estimated rate: the loss of every second record (say) would look the same.
  // lostAtMost includes it.
  bool mayLoseRegularly = false;
};

class LineModel {
 public:
  // `rate`: records per second that the camera sends, kLowestRate to kHighestRate, and accurate to 2 %; 0 = estimate.
  explicit LineModel(double rate = 0);

  // Adds the next record; `seconds` never decreases. `isAfterSilence`: nothing is known of the kGapSeconds or more
  // before it, so no records are missing there.
  void AddRecord(double seconds, bool isAfterSilence);
  void AddSilence(const Silence& silence) { silences_.push_back(silence); }  // in ascending order
  void ContinueSilence(double to) { silences_.back().to = to; }              // the last one
  // Evaluates the last records, which otherwise wait for others. More may follow.
  void Finish();

  // The records of a selection: their number, and the times of the first, of the last, and of the one before the first
  // (negative if there is none). The times do not matter without records.
  struct Selection {
    double from, to;  // seconds
    long long records;
    double before, first, last;
  };
  LineFigures Figures(const Selection& selection) const;

  const std::vector<Silence>& Silences() const { return silences_; }
  // The losses in ascending order, the first kMaxLosses; none where arrival is too irregular for single ones.
  const std::vector<Loss>& Losses() const { return losses_; }
  static constexpr size_t kMaxLosses = 1 << 16;
  bool HasMoreLosses() const { return hasMoreLosses_; }

 private:
  static constexpr size_t kMinRecords = 24;  // of a window in which a rate can be found
  static constexpr double kGivenTolerance = 0.02, kFairCoherence = 0.5;
  // Consecutive records that are numbered by one straight line: number = phase + slope * (seconds - from), rounded.
  struct Window {
    double from, to;      // seconds, of the first and the last record
    double phase, slope;  // number at `from`; numbers per second
    float coherence;      // 0 to 1: how exactly the records arrive at regular times; 0 = unknown
    int records;
    bool isRegular;  // numbered by the camera's rate; otherwise consecutively
    bool isJoined;   // continues the numbering of the previous window
  };
  struct Times {
    std::vector<double> seconds;
    bool isAfterSilence;
    Times First(size_t count) const { return {{seconds.data(), seconds.data() + count}, isAfterSilence}; }
    Times Rest(size_t count) const {
      return {{seconds.data() + count, seconds.data() + seconds.size()}, count == 0 && isAfterSilence};
    }
  };
  struct Wave {
    double amplitude, phase;
  };
  static Wave WaveOf(const std::vector<double>& seconds, double rate);
  void CloseWindow();
  bool Follow(const Times& times);
  bool FindRate();
  double BestRate(double from, double to, double step) const;
  double PowerAt(double rate) const;
  bool IsPlausible(double rate, double amplitude) const;
  void AddRegular(const Times& times, const Wave& wave);
  void AddFromChange(const Times& times, const Wave& wave);
  void AddIrregular(const Times& times);
  void AddLosses(const Times& times);
  size_t RecordsBeforeChange(const Times& times) const;
  void FlushPending();
  void Number(const Times& times);
  bool HasSteps(const Times& times, const Wave& wave) const;
  long long NumberAt(double seconds) const;
  const Window* WindowAt(double seconds) const;
  void AddBounds(const Window& window, double share, LineFigures* figures) const;

  double givenRate_;
  double rate_ = 0, coherence_ = 0;  // of the windows that are followed; 0 = none
  Times open_{};
  Times last_{};  // of the last windows of one rate
  size_t lastWindows_ = 0, lossesBefore_ = 0;
  std::vector<Times> pending_;        // until a rate is found
  int windowsToSkip_ = 0, skip_ = 0;  // without a search, after failures
  std::vector<Window> windows_;
  std::vector<Silence> silences_;
  std::vector<Loss> losses_;
  bool hasMoreLosses_ = false;
};

}  // namespace camera
