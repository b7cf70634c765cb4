#include "JsonTexts.h"

#include <QJsonArray>
#include <QJsonDocument>
#include <QJsonObject>
#include <random>

using namespace Qt::StringLiterals;

namespace {

using Random = std::mt19937;

int below(Random &random, int limit)
{
    return static_cast<int>(random() % static_cast<unsigned>(limit));
}

QString digits(Random &random, int count)
{
    QString text(1, QChar(u'1' + below(random, /*limit=*/9)));
    while (text.size() < count)
        text += QChar(u'0' + below(random, /*limit=*/10));
    return text;
}

QString sentence(Random &random, int mostWords)
{
    static const QStringList latin = {u"wheel"_s,  u"of"_s,    u"life"_s,
                                      u"goals"_s,  u"today"_s, u"na\u00efve"_s,
                                      u"run"_s,    u"twice"_s, u"https://example.org/a/b"_s,
                                      u"a\nline"_s};
    static const QStringList japanese = {u"今日"_s,     u"の"_s,         u"目標は走ること"_s, u"です😋"_s,
                                         u"人生の輪"_s, u"ありがとう"_s, u"@name_123"_s};
    const QStringList &vocabulary = below(random, /*limit=*/3) ? japanese : latin;
    QStringList text;
    for (int words = below(random, mostWords + 1); words > 0; --words)
        text += vocabulary[below(random, static_cast<int>(vocabulary.size()))];
    return text.join(u' ');
}

QJsonValue orNull(Random &random, const QJsonValue &value)
{
    return below(random, /*limit=*/2) ? value : QJsonValue(QJsonValue::Null);
}

QJsonArray links(Random &random)
{
    QJsonArray links;
    for (int count = below(random, /*limit=*/3); count > 0; --count) {
        const QString address = u"http://example.org/"_s + digits(random, 1 + below(random, /*limit=*/20));
        links.append(QJsonObject{
            {u"url"_s, address},
            {u"expanded_url"_s, address + u"/index.html"_s},
            {u"display_url"_s, address.sliced(7)},
            {u"indices"_s, QJsonArray{below(random, /*limit=*/100), below(random, /*limit=*/140)}}});
    }
    return links;
}

QJsonObject sender(Random &random)
{
    const QString id = digits(random, 6 + below(random, /*limit=*/5));
    QJsonObject sender{
        {u"id"_s, id.toLongLong()},
        {u"id_str"_s, id},
        {u"name"_s, sentence(random, /*mostWords=*/3)},
        {u"screen_name"_s, u"name_"_s + digits(random, 1 + below(random, /*limit=*/10))},
        {u"location"_s, sentence(random, /*mostWords=*/2)},
        {u"description"_s, sentence(random, /*mostWords=*/28)},
        {u"url"_s, orNull(random, u"http://example.org/a"_s)},
        {u"entities"_s, QJsonObject{{u"description"_s, QJsonObject{{u"urls"_s, links(random)}}}}},
        {u"created_at"_s, u"Sat Feb 16 13:46:25 +0000 2013"_s},
        {u"utc_offset"_s, orNull(random, 32'400)},
        {u"time_zone"_s, orNull(random, u"Tokyo"_s)}};
    for (const auto name :
         {"followers_count", "friends_count", "listed_count", "favourites_count", "statuses_count"})
        sender.insert(QLatin1StringView(name), below(random, 1 << below(random, /*limit=*/16)));
    for (const auto name : {"protected", "geo_enabled", "verified", "contributors_enabled", "is_translator",
                            "is_translation_enabled", "profile_use_background_image", "default_profile",
                            "default_profile_image", "following", "follow_request_sent", "notifications"})
        sender.insert(QLatin1StringView(name), below(random, /*limit=*/4) == 1);
    for (const auto name : {"profile_background_color", "profile_link_color", "profile_text_color",
                            "profile_sidebar_border_color", "profile_sidebar_fill_color"})
        sender.insert(QLatin1StringView(name), digits(random, /*count=*/6));
    for (const auto name : {"profile_background_image_url", "profile_background_image_url_https",
                            "profile_image_url", "profile_image_url_https", "profile_banner_url"})
        if (below(random, /*limit=*/8))
            sender.insert(QLatin1StringView(name), u"http://example.org/images/themes/"_s +
                                                       digits(random, 5 + below(random, /*limit=*/30)));
    return sender;
}

QJsonObject post(Random &random, bool withOriginal)
{
    const QString id = digits(random, /*count=*/18);
    QJsonArray mentions;
    for (int count = below(random, /*limit=*/3); count > 0; --count)
        mentions.append(
            QJsonObject{{u"screen_name"_s, u"name_"_s + digits(random, 1 + below(random, /*limit=*/10))},
                        {u"name"_s, sentence(random, /*mostWords=*/3)},
                        {u"id"_s, below(random, 1 << 30)},
                        {u"indices"_s, QJsonArray{0, below(random, /*limit=*/20)}}});
    QJsonObject post{
        {u"metadata"_s, QJsonObject{{u"result_type"_s, u"recent"_s}, {u"iso_language_code"_s, u"ja"_s}}},
        {u"created_at"_s, u"Sun Aug 31 00:29:15 +0000 2014"_s},
        {u"id"_s, id.toLongLong()},
        {u"id_str"_s, id},
        {u"text"_s, sentence(random, /*mostWords=*/28)},
        {u"source"_s, u"<a href=\"http://example.org/"_s + digits(random, 1 + below(random, /*limit=*/20)) +
                          u"\">Client</a>"_s},
        {u"truncated"_s, false},
        {u"user"_s, sender(random)},
        {u"retweet_count"_s, below(random, 1 << below(random, /*limit=*/16))},
        {u"favorite_count"_s, below(random, 1 << below(random, /*limit=*/10))},
        {u"entities"_s, QJsonObject{{u"hashtags"_s, QJsonArray()},
                                    {u"symbols"_s, QJsonArray()},
                                    {u"urls"_s, links(random)},
                                    {u"user_mentions"_s, mentions}}},
        {u"favorited"_s, false},
        {u"retweeted"_s, false},
        {u"lang"_s, u"ja"_s}};
    for (const auto name : {"in_reply_to_status_id_str", "in_reply_to_user_id_str", "in_reply_to_screen_name",
                            "geo", "coordinates", "place", "contributors"})
        post.insert(QLatin1StringView(name), below(random, /*limit=*/8)
                                                 ? QJsonValue(QJsonValue::Null)
                                                 : QJsonValue(digits(random, /*count=*/9)));
    if (withOriginal)
        post.insert(u"retweeted_status"_s, ::post(random, /*withOriginal=*/false));
    return post;
}

QJsonObject performance(Random &random)
{
    QJsonArray prices;
    QJsonArray categories;
    for (int i = 0; i < 5; ++i) {
        prices.append(QJsonObject{{u"amount"_s, 1000 * (20 + below(random, /*limit=*/100))},
                                  {u"audienceSubCategoryId"_s, 337100890},
                                  {u"seatCategoryId"_s, digits(random, /*count=*/9).toInt()}});
        QJsonArray areas;
        for (int area = below(random, /*limit=*/16); area >= 0; --area)
            areas.append(QJsonObject{{u"areaId"_s, digits(random, /*count=*/9).toInt()},
                                     {u"blockIds"_s, QJsonArray()}});
        categories.append(
            QJsonObject{{u"areas"_s, areas}, {u"seatCategoryId"_s, digits(random, /*count=*/9).toInt()}});
    }
    return {{u"eventId"_s, digits(random, /*count=*/9).toInt()},
            {u"id"_s, digits(random, /*count=*/9).toInt()},
            {u"logo"_s, QJsonValue::Null},
            {u"name"_s, QJsonValue::Null},
            {u"prices"_s, prices},
            {u"seatCategories"_s, categories},
            {u"seatMapImage"_s, QJsonValue::Null},
            {u"start"_s, qint64(1'372'701'600'000)},
            {u"venueCode"_s, u"PLEYEL_PLEYEL"_s}};
}

QString indented(const QJsonObject &tree)
{
    return QString::fromUtf8(QJsonDocument(tree).toJson(QJsonDocument::Indented));
}

} // namespace

QString JsonTexts::posts()
{
    Random random(1);
    QJsonArray posts;
    for (int i = 0; i < 100; ++i)
        posts.append(post(random, /*withOriginal=*/i % 4 != 0));
    return indented({{u"statuses"_s, posts}}).replace(u"    "_s, u"  "_s);
}

QString JsonTexts::catalog()
{
    Random random(2);
    QJsonObject events;
    for (int i = 0; i < 184; ++i) {
        const QString id = digits(random, /*count=*/9);
        events.insert(id, QJsonObject{{u"description"_s, QJsonValue::Null},
                                      {u"id"_s, id.toInt()},
                                      {u"logo"_s, QJsonValue::Null},
                                      {u"name"_s, sentence(random, /*mostWords=*/3)},
                                      {u"subTopicIds"_s, QJsonArray{digits(random, /*count=*/9).toInt(),
                                                                    digits(random, /*count=*/9).toInt()}},
                                      {u"subjectCode"_s, QJsonValue::Null},
                                      {u"subtitle"_s, QJsonValue::Null},
                                      {u"topicIds"_s, QJsonArray{324846099, 107888604}}});
    }
    QJsonArray performances;
    for (int i = 0; i < 243; ++i)
        performances.append(performance(random));
    return indented({{u"events"_s, events}, {u"performances"_s, performances}});
}

QString JsonTexts::coordinates()
{
    Random random(3);
    QString text = u"{\"type\":\"FeatureCollection\",\"features\":[{\"type\":\"Feature\",\"geometry\":"
                   "{\"type\":\"Polygon\",\"coordinates\":["_s;
    for (int ring = 0; ring < 480; ++ring) {
        text += ring ? u",["_s : u"["_s;
        for (int point = 0; point < 116; ++point)
            text += (point ? u",[-"_s : u"[-"_s) + digits(random, /*count=*/2) + u'.' +
                    digits(random, 12 + below(random, /*limit=*/4)) + u',' + digits(random, /*count=*/2) +
                    u'.' + digits(random, 13 + below(random, /*limit=*/3)) + u']';
        text += u']';
    }
    return text + u"]}}]}"_s;
}

QString JsonTexts::signUpAnswer()
{
    // As an answer arrives, in memory of its own: a literal may lack the zero behind it, and would be copied.
    return QString::fromUtf8("{\"result\":\"Error\",\"message\":\"This e-mail address is already used\"}");
}

QString JsonTexts::nests(int count, int depth)
{
    return u'[' + (QString(depth, u'[') + QString(depth, u']')).repeated(count) + u']';
}

QString JsonTexts::dictionaries(int count, int members)
{
    QString text = u"["_s;
    for (int i = 0; i < count; ++i) {
        text += u'{';
        for (int member = 0; member < members; ++member)
            text += u"\"member %1\":%2,"_s.arg(i * members + member, 7).arg(member % 10);
        text.back() = u'}';
        text += u',';
    }
    text.back() = u']';
    return text;
}

QString JsonTexts::records(int count)
{
    QString text = u"["_s;
    for (int i = 0; i < count; ++i)
        text +=
            u"{\"id\":%1,\"name\":\"Run five kilometres twice a week\",\"value\":12.5,\"tags\":[\"a\",\"b\"],\"done\":true},"_s
                .arg(i, 8, 10, QChar(u'1'));
    text.back() = u']';
    return text;
}
