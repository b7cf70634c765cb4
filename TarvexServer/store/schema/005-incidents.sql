-- Shows that a secret is the one that the logins are kept under. One row, once they are.
CREATE TABLE secret_proof (proof TEXT NOT NULL);

-- Failures of the last minute, by those whom they count against.
CREATE TABLE failure (failure_key TEXT NOT NULL, failed_at BIGINT NOT NULL);

CREATE INDEX failure_of_key ON failure (failure_key, failed_at);

-- Saves that came to nothing lately, so that no delete takes what they were to replace. Without a place,
-- which is 0, it may have been any.
CREATE TABLE refused_save (
    saver TEXT NOT NULL,
    set_id BIGINT NOT NULL,
    area_id BIGINT NOT NULL,
    kept_until BIGINT NOT NULL,
    PRIMARY KEY (saver, set_id, area_id)
);
