SELECT store.store_name, count(*) AS lines
FROM sales
JOIN calendar AS "due date" ON sales.due_date_key = "due date".date_key
LEFT JOIN calendar AS "ship date" ON sales.ship_date_key = "ship date".date_key
JOIN store ON sales.store_key = store.store_key
WHERE "ship date".calendar_date > "due date".calendar_date
GROUP BY store.store_name
ORDER BY store.store_name;
